// Ways to crash that are the same on every platform. None of them returns.
//
// Each fault sits in a function of its own that the compiler may not inline
// and reaches its target through a volatile, so that neither the optimiser
// nor a sanitizer can turn it into something else (a trap instruction, an
// early report of its own).
#pragma once

#include <chrono>

namespace crash_host {

[[noreturn]] void accessViolation();
[[noreturn]] void divideByZero();
[[noreturn]] void callAbort();
[[noreturn]] void pureVirtualCall();
// Throws a std::runtime_error("no one catches this") that nothing catches.
[[noreturn]] void uncaughtException();
// Waits without sleeping, so that the moment after it is exact to within
// microseconds rather than a scheduler's tick.
void spinFor(std::chrono::microseconds delay);

// Two threads wait for each other at a barrier, then both crash the given
// way, the second after the given delay.
[[noreturn]] void faultOnTwoThreads(void (*how)(), std::chrono::microseconds secondThreadDelay);
// Frees a block twice. glibc notices under the heap's lock and aborts while
// it still holds it; an allocator that doesn't notice gets an access
// violation instead.
[[noreturn]] void corruptHeap();

}  // namespace crash_host
