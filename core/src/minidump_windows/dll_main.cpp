// The library leaving the process on Windows. Windows code only.
//
// At process exit the system has ended every other thread before this runs,
// so the stop step's join returns at once. The atexit destruction of the
// handler object follows, and finds the process exiting. Unloading the
// library with FreeLibrary while crash handling is on is not supported: the
// host calls resetUnhandledExceptionHandler first.
#include "minidump_internal/filter_upkeep.h"

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_DETACH) norvane_1::detachFromProcess();
    return TRUE;
}
