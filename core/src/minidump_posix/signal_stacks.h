// Stacks for signals on every thread; see signal_stacks_posix.cpp. POSIX code only.
#pragma once

#include <pthread.h>

namespace norvane_1 {

// pthread_create of the C library, with the new thread given a stack for
// signals first while crash handling is installed.
int createThreadWithSignalStack(pthread_t* thread, pthread_attr_t const* attributes, void* (*routine)(void*),
                                void* argument);

}  // namespace norvane_1
