// The shared library's pthread_create, in front of the C library's, so that
// every thread the process starts can take a stack overflow with a report
// (signal_stacks_posix.cpp). Built into the shared library only: the unit tests,
// which link the library's objects into programs of their own, keep the C
// library's. POSIX code only.
//
// The definition carries the symbol versions under which the C library
// offers pthread_create, so that the references of other libraries, which
// name those versions, reach it too.
#include "signal_stacks.h"

extern "C" __attribute__((visibility("default"))) int norvane_pthread_create(pthread_t* thread,
                                                                             pthread_attr_t const* attributes,
                                                                             void* (*routine)(void*), void* argument) {
    return norvane_1::createThreadWithSignalStack(thread, attributes, routine, argument);
}

extern "C" __attribute__((visibility("default"), alias("norvane_pthread_create"))) int norvane_pthread_create_2_2_5(
    pthread_t*, pthread_attr_t const*, void* (*)(void*), void*);

__asm__(".symver norvane_pthread_create, pthread_create@@GLIBC_2.34");
__asm__(".symver norvane_pthread_create_2_2_5, pthread_create@GLIBC_2.2.5");
