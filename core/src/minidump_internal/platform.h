// What the portable crash flow asks of the platform layer. Portable code
// includes this header; core/src/minidump_windows and core/src/minidump_posix
// each define every function in it, and CMake builds exactly one of them.
#pragma once

#include <norvane_1/exception_data.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace norvane_1 {

class HandlerState;

namespace platform {

// The process hooks through which a crash reaches dumpMiniDump: the
// unhandled-exception filter (signal handlers on Linux), abort and pure
// calls. setProcessHooks may run every second, so it must be cheap and
// idempotent.
void setProcessHooks();
void resetProcessHooks();
// The hook upkeep thread's sleep between its passes: returns once
// `milliseconds` have passed, or as soon as `stop` is not 0 and
// wakeUpkeepSleep has been called on it; a stop set before the sleep makes it
// return at once. It may also return early, for a signal. One system call,
// no allocation and no clock read, as it runs every second.
void sleepUnlessStopped(std::atomic<std::uint32_t> const& stop, std::uint32_t milliseconds);
void wakeUpkeepSleep(std::atomic<std::uint32_t>& stop);
// While a crash is handled, in place of the hooks: a later fault on another
// thread is held by holdLateFault() and then goes to the system's default
// handling. Each replaces its process hook directly, so that at no moment is
// a crash signal or exception without a hook of ours. Removed by
// resetProcessHooks.
void setLateFaultHooks();
// Readies the threads of the process, the installing one, those running and
// those started from now on, to run the crash path even when their own
// stack is used up. stopPreparingNewThreads (remove step) leaves threads
// started later as they come.
void prepareThreadsForStackOverflow();
void stopPreparingNewThreads();

// Crashed thread, before the hand-over: copies what `data` points at into
// the platform's state object, with the crashed process's and thread's ids.
void saveExceptionData(HandlerState& state, ExceptionData const* data, std::uint32_t processId, std::uint32_t threadId);
// No fault dialog of the system while the crash is handled, and back.
void suppressFaultDialogs();
void restoreFaultDialogs();
// Ends the crashed process with exit code 3. Returns only if that failed.
void endCrashedProcess();
// The crash's time budget, from the fault until the handler process has
// started: past it the process ends with exit code 3 and a line on standard
// error, with whatever report is on disk, rather than hang on a lock that
// the crash left held. prepareCrashBudget (install step) sets its length and
// readies what watches it; dropCrashBudget (remove step) takes that down.
// armCrashBudget runs first thing on the crashed thread and is
// async-signal-safe; endCrashBudget runs once the handler process has
// started, or once the crash is decided, and does nothing when no budget is
// armed. The wait for the handler itself has no limit.
void prepareCrashBudget(std::uint32_t milliseconds);
void dropCrashBudget();
void armCrashBudget();
void endCrashBudget();

// Crashed thread, before the shutdown callback: a fault of the callback must
// reach the crash path again rather than end the process (on Linux the
// crash signals are blocked inside their own handlers), and so must an
// exit() of the callback, while the worker still runs (on Windows the
// library's own clean-up comes after the system has ended every thread).
void admitCallbackFailures();

// "\\" on Windows, "/" on Linux: what the library adds to a directory.
wchar_t pathSeparator();

std::uint32_t currentProcessId();
std::uint32_t currentThreadId();

// ".exe" on Windows, empty on Linux: what a program's file name ends with.
wchar_t const* programExtension();

// While it lives, a program this process starts may examine `processId`
// from outside (read its threads' registers and memory) when that is this
// process. Linux with a ptrace restriction to ancestors needs it; elsewhere
// it does nothing.
class InspectionGrant {
public:
    explicit InspectionGrant(std::uint32_t processId);
    ~InspectionGrant();
    InspectionGrant(InspectionGrant const&) = delete;
    InspectionGrant& operator=(InspectionGrant const&) = delete;

private:
    bool m_granted = false;
};

}  // namespace platform
}  // namespace norvane_1
