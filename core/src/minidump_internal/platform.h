// What the portable crash flow asks of the platform layer. Portable code
// includes this header; core/src/minidump_windows and core/src/minidump_posix
// each define every function in it, and CMake builds exactly one of them.
#pragma once

#include <norvane_1/exception_data.h>

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
// While a crash is handled, in place of the hooks: a later fault on another
// thread is held by holdLateFault() and then goes to the system's default
// handling. Each replaces its process hook directly, so that at no moment is
// a crash signal or exception without a hook of ours. Removed by
// resetProcessHooks.
void setLateFaultHooks();
// Readies the calling thread (the one that installs crash handling) to run
// the crash path even when its own stack is used up.
void prepareInstallingThread();

// Crashed thread, before the hand-over: copies what `data` points at into
// the platform's state object, with the crashed process's and thread's ids.
void saveExceptionData(HandlerState& state, ExceptionData const* data, std::uint32_t processId,
                       std::uint32_t threadId);
// No fault dialog of the system while the crash is handled, and back.
void suppressFaultDialogs();
void restoreFaultDialogs();
// Ends the crashed process with exit code 3. Returns only if that failed.
void endCrashedProcess();
// Crashed thread: a time limit for the way to the hand-over, which a lock
// left held by the crash can block. Past it the process ends with exit code
// 3 and no report rather than hang. Armed on entry, disarmed at the hand-over.
void armHandOverDeadline();
void disarmHandOverDeadline();

// "\\" on Windows, "/" on Linux: what the library adds to a directory.
wchar_t pathSeparator();

std::uint32_t currentProcessId();
std::uint32_t currentThreadId();

// Starts `program` with `arguments` and waits for its end without a time
// limit; the program receives each argument as one, blanks included. The
// exit code, or -1 if the program could not be started.
int spawnAndWait(std::wstring const& program, std::vector<std::wstring> const& arguments);

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
