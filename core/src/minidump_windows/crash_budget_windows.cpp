// The crash's time budget on Windows (platform.h). Windows code only.
//
// A watchdog thread, started at install, sleeps on an event until a crash
// arms the budget; then it waits, up to the budget, for the handler's start.
// Should the handler not have started by then, it writes a line to standard
// error and ends the process with exit code 3, with whatever report is on
// disk. It depends on neither the crashed thread nor the worker, the two
// that a lock left held by the crash can stop: a crash inside the heap, the
// loader or the logger blocks them, not the watchdog, which allocates
// nothing once it runs. Arming and ending only set events.
#include "minidump_internal/platform.h"
#include "minidump_internal/process_globals.h"
#include "scoped_handle_windows.h"

#include <windows.h>

#include <cstdio>
#include <utility>

namespace norvane_1 {
namespace platform {
namespace {

// Plain handles, kept for the life of the process: the crash path reads
// them also while static objects are being destroyed. Only the thread's is
// closed, when the budget is dropped.
struct Watch {
    HANDLE crashBegan = nullptr;      // manual reset: set by arm
    HANDLE handlerStarted = nullptr;  // manual reset: set by end
    HANDLE stop = nullptr;            // manual reset: set by drop
    HANDLE thread = nullptr;
    DWORD milliseconds = 30000;
    char note[192] = {};
    DWORD noteLength = 0;
};

Watch g_watch;

void writeNote() {
    HANDLE const error = ::GetStdHandle(STD_ERROR_HANDLE);
    DWORD written = 0;
    if (error != nullptr && error != INVALID_HANDLE_VALUE) {
        ::WriteFile(error, g_watch.note, g_watch.noteLength, &written, nullptr);
    }
}

DWORD WINAPI watchCrashes(LPVOID) {
    for (;;) {
        HANDLE const beginOrStop[] = {g_watch.crashBegan, g_watch.stop};
        if (::WaitForMultipleObjects(2, beginOrStop, FALSE, INFINITE) != WAIT_OBJECT_0) return 0;
        HANDLE const startOrStop[] = {g_watch.handlerStarted, g_watch.stop};
        DWORD const outcome = ::WaitForMultipleObjects(2, startOrStop, FALSE, g_watch.milliseconds);
        if (outcome == WAIT_TIMEOUT) {
            writeNote();
            ::TerminateProcess(::GetCurrentProcess(), 3);
        }
        if (outcome != WAIT_OBJECT_0) return 0;
        // The handler started, and a crash that is passed on leaves the
        // process running: ready for the next one.
        ::ResetEvent(g_watch.crashBegan);
        ::ResetEvent(g_watch.handlerStarted);
    }
}

HANDLE manualResetEvent() { return ::CreateEventW(nullptr, TRUE, FALSE, nullptr); }

}  // namespace

void prepareCrashBudget(std::uint32_t milliseconds) {
    g_watch.milliseconds = milliseconds;
    int const length = std::snprintf(g_watch.note, sizeof g_watch.note,
                                     "norvane: the crash's handler did not start within %u ms; something the crash "
                                     "left locked holds it up. Ending the process with the report as it stands.\r\n",
                                     static_cast<unsigned>(milliseconds));
    g_watch.noteLength = length > 0 ? static_cast<DWORD>(std::min<int>(length, sizeof g_watch.note - 1)) : 0;
    if (g_watch.thread != nullptr) return;
    if (g_watch.crashBegan == nullptr) {
        g_watch.crashBegan = manualResetEvent();
        g_watch.handlerStarted = manualResetEvent();
        g_watch.stop = manualResetEvent();
    }
    ::ResetEvent(g_watch.stop);
    g_watch.thread = ::CreateThread(nullptr, 64 * 1024, watchCrashes, nullptr, STACK_SIZE_PARAM_IS_A_RESERVATION,
                                    nullptr);
}

// At process exit the system has ended the watchdog already, and the loader
// lock is held: nothing is waited for.
void dropCrashBudget() {
    ScopedHandle const thread(std::exchange(g_watch.thread, nullptr));
    if (!thread.valid()) return;
    ::SetEvent(g_watch.stop);
    if (!g_processExiting) ::WaitForSingleObject(thread.get(), INFINITE);
}

void armCrashBudget() {
    if (g_watch.crashBegan == nullptr) return;
    ::ResetEvent(g_watch.handlerStarted);
    ::SetEvent(g_watch.crashBegan);
}

void endCrashBudget() {
    if (g_watch.handlerStarted != nullptr) ::SetEvent(g_watch.handlerStarted);
}

}  // namespace platform
}  // namespace norvane_1
