// ExceptionHandler and ActualExceptionHandler: choosing the handler program,
// and starting it when a crash comes. Portable code only.
#include <norvane_1/exception_handler.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/string_traits.h>

#include "minidump_internal/crash_filter.h"
#include "minidump_internal/filter_upkeep.h"
#include "minidump_internal/platform.h"
#include "os_layer/process_spawn.h"

#include <gavrel2/environment.h>
#include <gavrel2/path.h>
#include <ostrel2/product_locations.h>

namespace norvane_1 {
namespace {

using string_traits::numberToString;

// Options the library relays to the handler process, unread, when set.
struct RelayedOption {
    wchar_t const* variable;
    wchar_t const* option;
};

constexpr RelayedOption kRelayedOptions[] = {
    {L"NORVANE_CRASH_HANDLER_TCP_PORT", L"-tcp-port"},
    {L"NORVANE_CRASH_HANDLER_CLIENT_CERTIFICATE_PATH", L"-client-certificate"},
    {L"NORVANE_CRASH_HANDLER_CLIENT_CERTIFICATE_KEY_PATH", L"-client-certificate-key"},
    {L"NORVANE_CRASH_HANDLER_SERVER_CERTIFICATE_PATH", L"-server-certificate"},
};

std::vector<std::wstring> handlerArguments(DumpInfo const& info) {
    std::vector<std::wstring> arguments{L"-handle-crash",        L"-report-system-info",
                                        L"-system-info-file",    info.systemInfoPath,
                                        L"-collect-module-info", L"-collect-product-info",
                                        L"-crash-info-file",     info.crashInfoPath,
                                        L"-minidump-stack",      numberToString(info.stackProcessId),
                                        L"-dump-memory",         numberToString(info.dumpMemory),
                                        L"-load-module-map",     numberToString(info.moduleMapProcessId)};
    for (auto const& relayed : kRelayedOptions) {
        std::wstring const value = gavrel2::get_environ_value(relayed.variable);
        if (value.empty()) continue;
        arguments.push_back(relayed.option);
        arguments.push_back(value);
    }
    return arguments;
}

}  // namespace

ExceptionHandler::ExceptionHandler() = default;
ExceptionHandler::ExceptionHandler(ExceptionHandler const&) = default;
ExceptionHandler::~ExceptionHandler() = default;
ExceptionHandler& ExceptionHandler::operator=(ExceptionHandler const&) = default;

ActualExceptionHandler::ActualExceptionHandler() = default;

ActualExceptionHandler::~ActualExceptionHandler() {
    carryOnCrashLeftByExit();
    removeCrashHandling();
}

int ActualExceptionHandler::handleCrash(DumpInfo const& info) {
    if (m_path.empty()) return -1;
    // The handler reads the stacks of this process from outside.
    platform::InspectionGrant const handlerMayInspect(platform::currentProcessId());
    return spawnHandler(m_path, handlerArguments(info));
}

int ActualExceptionHandler::spawnHandler(std::wstring const& path, std::vector<std::wstring> const& arguments) {
    // Once the handler runs, the crash's time budget is over: the handler
    // may take as long as it needs, showing the report to a person say.
    return os_layer::spawnAndWait(path, arguments, platform::endCrashBudget);
}

void ActualExceptionHandler::setHandlerPath(wchar_t const* path) {
    std::wstring const chosen = gavrel2::get_environ_value(L"NORVANE_CRASH_HANDLER");
    std::wstring candidate;
    if (chosen.empty()) {
        if (path == nullptr) return;
        candidate = path;
    } else {
        if (chosen == m_path) return;
        candidate = chosen;
    }
    if (locateHandler(candidate)) m_path = candidate;
}

bool ActualExceptionHandler::locateHandler(std::wstring& path) {
    gavrel2::path_t const given(path);
    if (given.is_absolute()) return gavrel2::path_t::exists(given.as_string());
    ostrel2::IProductLocations* service = ostrel2::IProductLocations::get();
    wchar_t const* directory = service ? service->getProductBinDirectory(ostrel2::IProductLocations::getArch())
                                       : nullptr;
    if (directory == nullptr) return false;
    gavrel2::path_t full(directory);
    full.append(path);
    if (!gavrel2::path_t::exists(full.as_string())) full.assign(full.as_string() + L".exe");
    if (gavrel2::path_t::exists(full.as_string()) && !gavrel2::path_t::is_directory(full.as_string())) {
        path = full.as_string();
    }
    return gavrel2::path_t::exists(path);
}

}  // namespace norvane_1
