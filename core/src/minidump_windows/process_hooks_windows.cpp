// The process hooks on Windows. Windows code only.
//
// Three ways lead into the crash path: the unhandled-exception filter, and
// two software exceptions of our own that turn abort (through SIGABRT) and a
// pure-virtual call (through the run-time library's pure-call handler) into
// exceptions that reach the same filter, told apart by their codes.
#include "minidump_internal/crash_filter.h"
#include "minidump_internal/exception_names.h"
#include "minidump_internal/platform.h"
#include "stack_overflow.h"

#include <windows.h>

#include <atomic>
#include <csignal>

namespace norvane_1 {
namespace {

// A stack overflow leaves too little stack for the steps: they go to a
// relay thread (stack_overflow_windows.cpp).
LONG WINAPI unhandledExceptionFilter(EXCEPTION_POINTERS* pointers) {
    bool const overflow = pointers != nullptr && pointers->ExceptionRecord != nullptr &&
                          pointers->ExceptionRecord->ExceptionCode == EXCEPTION_STACK_OVERFLOW;
    return overflow ? relayStackOverflow(pointers) : dumpMiniDump(pointers);
}

// The run-time library sets SIGABRT back to its default before it calls a
// handler; set at once again, so that an abort on another thread meanwhile
// reaches the filter too instead of ending the process without a report.
void raiseAbortException(int) {
    std::signal(SIGABRT, raiseAbortException);
    ::RaiseException(kAbortExceptionCode, 0, 0, nullptr);
}

void raisePureCallException() { ::RaiseException(kPureCallExceptionCode, 0, 0, nullptr); }

LONG WINAPI lateFaultFilter(EXCEPTION_POINTERS* pointers) { return lateFault(pointers); }

// An abort while a crash is handled: held, then the run-time library's own
// abort goes on.
void lateAbort(int) {
    holdLateFault();
    std::signal(SIGABRT, SIG_DFL);
}

// Not every msvcrt.dll has these two, so they are looked up rather than
// imported: a missing one must not keep the library from loading.
using AbortBehaviorSetter = unsigned int(__cdecl*)(unsigned int, unsigned int);
using PureCallHandler = void(__cdecl*)();
using PureCallHandlerSetter = PureCallHandler(__cdecl*)(PureCallHandler);

template <typename Function>
Function runtimeFunction(char const* name) {
    HMODULE const runtime = ::GetModuleHandleW(L"msvcrt.dll");
    return runtime ? reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(runtime, name))) : nullptr;
}

using ExitListEntry = int(__cdecl*)();
using RuntimeExitList = ExitListEntry(__cdecl*)(ExitListEntry);

int __cdecl carryOnAtExit() {
    carryOnCrashLeftByExit();
    return 0;
}

void setPureCallHandler(PureCallHandler handler) {
    static auto const setter = runtimeFunction<PureCallHandlerSetter>("_set_purecall_handler");
    if (setter) setter(handler);
}

// No abort message box and no fault report from the run-time library.
void switchOffAbortReporting() {
    static auto const setter = runtimeFunction<AbortBehaviorSetter>("_set_abort_behavior");
    if (setter) setter(0, 3);
}

}  // namespace

namespace platform {

void setProcessHooks() {
    ::SetUnhandledExceptionFilter(unhandledExceptionFilter);
    switchOffAbortReporting();
    std::signal(SIGABRT, raiseAbortException);
    setPureCallHandler(raisePureCallException);
}

void resetProcessHooks() {
    ::SetUnhandledExceptionFilter(nullptr);
    restoreFaultDialogs();
    std::signal(SIGABRT, SIG_DFL);
    setPureCallHandler(nullptr);
}

// A pure call on another thread now takes the run-time library's way, which
// ends in abort and so in lateAbort.
void setLateFaultHooks() {
    ::SetUnhandledExceptionFilter(lateFaultFilter);
    std::signal(SIGABRT, lateAbort);
    setPureCallHandler(nullptr);
}

// Windows runs the filter for a fault inside the filter as for any other.
// An exit() is caught in the run-time library's own exit list, which exit()
// runs before ExitProcess ends the worker; the library's static clean-up
// would come too late. Registered only now, so an ordinary exit never sees
// it; the library is pinned, as the list now points into it.
void admitCallbackFailures() {
    static std::atomic<bool> registered{false};
    if (registered.exchange(true)) return;
    static auto const onExit = runtimeFunction<RuntimeExitList>("_onexit");
    HMODULE library = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                         reinterpret_cast<LPCWSTR>(&carryOnAtExit), &library);
    if (onExit) onExit(carryOnAtExit);
}

}  // namespace platform
}  // namespace norvane_1
