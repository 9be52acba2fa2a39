// Stack overflows on Windows; see stack_overflow_windows.cpp. Windows code only.
#pragma once

#include <windows.h>

namespace norvane_1 {

// The filter's way for EXCEPTION_STACK_OVERFLOW: the crash's steps run on a
// fresh thread while the faulting one waits. The filter's result.
LONG relayStackOverflow(EXCEPTION_POINTERS* pointers);

// DLL_THREAD_ATTACH: a thread started while crash handling is installed
// keeps room for the filter on its own stack.
void keepRoomOnNewThread();

}  // namespace norvane_1
