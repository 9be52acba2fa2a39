#include "minidump_internal/uncaught_exception.h"

#include <vantix_2_18/utf.h>

#include <cxxabi.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <typeinfo>

namespace norvane_1 {
namespace internal {
namespace {

// Fixed buffers: the handler runs on a thread that is about to crash, and
// must not depend on the heap beyond the demangler's one allocation.
char g_type[512];
char g_what[2048];
std::atomic<bool> g_noted{false};
std::terminate_handler g_hostHandler = nullptr;

void copyText(char (&target)[512], char const* text) { std::strncpy(target, text, sizeof target - 1); }
void copyText(char (&target)[2048], char const* text) { std::strncpy(target, text, sizeof target - 1); }

void noteCurrentException() {
    std::type_info const* type = abi::__cxa_current_exception_type();
    if (type == nullptr) return;  // std::terminate called without an exception
    int status = 0;
    char* readable = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
    copyText(g_type, readable != nullptr ? readable : type->name());
    std::free(readable);
    g_what[0] = '\0';
    try {
        throw;
    } catch (std::exception const& exception) {
        copyText(g_what, exception.what());
    } catch (...) {
        // Not a std::exception: the type is all there is.
    }
    g_noted = true;
}

[[noreturn]] void onTerminate() {
    noteCurrentException();
    if (g_hostHandler != nullptr) g_hostHandler();
    std::abort();  // a host handler that returned, or none
}

}  // namespace

void installTerminateHandler() {
    std::terminate_handler const former = std::set_terminate(onTerminate);
    if (former != onTerminate) g_hostHandler = former;
}

void restoreTerminateHandler() {
    if (std::get_terminate() == onTerminate) std::set_terminate(g_hostHandler);
}

bool takeUncaughtException(std::wstring& type, std::wstring& what) {
    if (!g_noted.exchange(false)) return false;
    type = VANTIX_2_18::utf::from_utf8(g_type);
    what = VANTIX_2_18::utf::from_utf8(g_what);
    return true;
}

}  // namespace internal
}  // namespace norvane_1
