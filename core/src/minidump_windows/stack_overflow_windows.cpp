// Stack overflows on Windows. Windows code only.
//
// When a thread runs into its stack's guard page, the system raises
// EXCEPTION_STACK_OVERFLOW on what is left of the stack: a few pages at
// best. The crash's steps (the logger, the report's first section, the
// hand-over) need more, and a second overflow inside the filter ends the
// process with no report or leaves it hanging. So the filter does only this
// on that stack: it starts a thread with a stack of normal size, which runs
// the steps on behalf of the faulting thread, and waits for it. The faulting
// thread stays parked in that wait, its registers and stack as they were,
// and the report names it, not the relay.
//
// The relay is reached from a vectored handler, which the system calls
// before any handler of the faulting thread's frames: those run on the
// exhausted stack too, and the C++ run-time's own (a noexcept frame of
// std::thread, say) would end the overflow in terminate and abort, with the
// overflow itself lost. Nothing recovers from an overflow that reached no
// handler of its own, so a host that handles one in a frame of its own is
// the one case this passes by; the handler is there only while crash
// handling is installed.
//
// Each thread started while crash handling is installed also asks the
// system to keep room at the end of its stack for the exception's handling
// (SetThreadStackGuarantee), so that the handler gets as far as the relay.
#include "stack_overflow.h"

#include "minidump_internal/crash_filter.h"
#include "minidump_internal/platform.h"
#include "scoped_handle_windows.h"

#include <atomic>

namespace norvane_1 {
namespace {

constexpr SIZE_T kRelayStack = 1024 * 1024;
constexpr ULONG kGuaranteedRoom = 64 * 1024;

std::atomic<bool> g_keepRoomOnNewThreads{false};

struct Relay {
    EXCEPTION_POINTERS* pointers;
    DWORD faultingThread;
    LONG result;
};

DWORD WINAPI runStepsForFaultingThread(LPVOID argument) {
    auto* relay = static_cast<Relay*>(argument);
    relay->result = dumpMiniDumpFor(relay->pointers, relay->faultingThread);
    return 0;
}

PVOID g_vectoredHandler = nullptr;

LONG WINAPI onVectoredException(EXCEPTION_POINTERS* pointers) {
    if (pointers->ExceptionRecord->ExceptionCode != EXCEPTION_STACK_OVERFLOW) return EXCEPTION_CONTINUE_SEARCH;
    return relayStackOverflow(pointers) == kExecuteHandler ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

void keepRoom() {
    ULONG room = kGuaranteedRoom;
    ::SetThreadStackGuarantee(&room);
}

}  // namespace

LONG relayStackOverflow(EXCEPTION_POINTERS* pointers) {
    Relay relay{pointers, ::GetCurrentThreadId(), EXCEPTION_CONTINUE_SEARCH};
    ScopedHandle const thread(::CreateThread(nullptr, kRelayStack, runStepsForFaultingThread, &relay,
                                             STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    // No thread to be had: the steps on what is left, the last chance.
    if (!thread.valid()) return dumpMiniDump(pointers);
    ::WaitForSingleObject(thread.get(), INFINITE);
    return relay.result;
}

void keepRoomOnNewThread() {
    if (g_keepRoomOnNewThreads) keepRoom();
}

namespace platform {

// Threads that were running at install can't be given room from outside;
// the relay alone serves them.
void prepareThreadsForStackOverflow() {
    keepRoom();
    g_keepRoomOnNewThreads = true;
    if (g_vectoredHandler == nullptr) g_vectoredHandler = ::AddVectoredExceptionHandler(1, onVectoredException);
}

void stopPreparingNewThreads() {
    g_keepRoomOnNewThreads = false;
    if (g_vectoredHandler != nullptr) ::RemoveVectoredExceptionHandler(g_vectoredHandler);
    g_vectoredHandler = nullptr;
}

}  // namespace platform
}  // namespace norvane_1
