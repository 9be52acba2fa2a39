// The library leaving the process on Windows. Windows code only.
//
// At process exit the system has ended every other thread before this runs,
// so the stop step's join returns at once. The atexit destruction of the
// handler object follows, and finds the process exiting. Unloading the
// library with FreeLibrary while crash handling is on is not supported: the
// host calls resetUnhandledExceptionHandler first.
//
// A host that exits while a crash is handled has had that crash's threads
// ended wherever they were: inside the C++ run-time, the threads library or
// the logger, with their locks held. The static destructors that the
// run-time runs after this function (the logger's among them) would wait
// for those locks for ever. So the process ends here, with the exit code the
// host gave, and nothing more of this library or the ones it uses runs.
#include "minidump_internal/crash_filter.h"
#include "minidump_internal/filter_upkeep.h"
#include "stack_overflow.h"

#include <windows.h>

namespace {

void endWithTheHostsExitCode() {
    DWORD code = 0;
    if (!::GetExitCodeProcess(::GetCurrentProcess(), &code) || code == STILL_ACTIVE) code = 3;
    ::TerminateProcess(::GetCurrentProcess(), code);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) {
    if (reason == DLL_THREAD_ATTACH) norvane_1::keepRoomOnNewThread();
    if (reason != DLL_PROCESS_DETACH) return TRUE;
    bool const processExit = reserved != nullptr;
    if (processExit && norvane_1::crashInProgress()) endWithTheHostsExitCode();
    norvane_1::detachFromProcess();
    return TRUE;
}
