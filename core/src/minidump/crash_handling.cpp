// The exported free functions of crash handling. They hold almost no logic:
// they forward to the install and remove steps and to the singleton state.
// Portable code only.
#include <norvane_1/crash_handling.h>
#include <norvane_1/exception_handler.h>
#include <norvane_1/handler_state.h>

#include "logging/logging.h"
#include "minidump_internal/crash_filter.h"
#include "minidump_internal/filter_upkeep.h"
#include "minidump_problem_report_storage/report_text_preparation.h"

#include <ostrel2/product_locations.h>

#include <csignal>
#include <cstdlib>

namespace norvane_1 {
namespace {

constexpr wchar_t kDefaultHandler[] = L"kelmur-feedback";

ActualExceptionHandler* g_handlerObject = nullptr;

void destroyHandlerObject() {
    delete g_handlerObject;
    g_handlerObject = nullptr;
}

// Made at the first call and destroyed at process exit, which takes crash
// handling off the process before the library goes, or, with a crash in
// progress, waits for it to end the process. Static objects the worker uses
// are made before the destruction is registered: exit() destroys them after
// it, never under a worker still writing the report. The loggers too, so the
// remove step at exit can still log.
ActualExceptionHandler& handlerObject() {
    if (g_handlerObject == nullptr) {
        log::prepareLoggers();
        internal::prepareReportText();
        ostrel2::IProductLocations::get();
        g_handlerObject = new ActualExceptionHandler();
        std::atexit(destroyHandlerObject);
    }
    return *g_handlerObject;
}

}  // namespace

ExceptionHandler* setUnhandledExceptionHandler(wchar_t const* path) {
    ActualExceptionHandler& handler = handlerObject();
    handler.setHandlerPath(path ? path : kDefaultHandler);
    installCrashHandling(&handler);
    NORVANE_LOG_INFO(log::mainLogger(), L"Exception handler is set, path: " << handler.getHandlerPath());
    return nullptr;
}

void resetUnhandledExceptionHandler() {
    removeCrashHandling();
    NORVANE_LOG_INFO(log::mainLogger(), L"Exception handler is reset");
}

void resetAndAbort() {
    removeCrashHandling();
    std::raise(SIGABRT);
}

void runExceptionHandler(ExceptionData* data) {
    if (data != nullptr) dumpMiniDump(data);
}

void setAppProperty(std::wstring const& name, gavrel2::variant_t const& value) {
    HandlerState* state = HandlerState::get();
    if (state != nullptr) state->addAppProperty(name, value);
}

void setGFGSutdownCallback(bool (*callback)()) {
    HandlerState* state = HandlerState::get();
    if (state != nullptr) state->setGFGSutdownCallback(callback);
}

}  // namespace norvane_1
