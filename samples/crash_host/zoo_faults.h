// The rest of the zoo of failures a crash handler must survive: faults the
// processor raises in other ways, stack overflows on any thread, many
// threads at once, and a crash whose own handling is disturbed (a shutdown
// callback that faults or exits, a worker that can't go on). None returns.
#pragma once

namespace crash_host {

[[noreturn]] void illegalInstruction();
[[noreturn]] void breakpoint();
// Recursion until the stack is used up, on the calling thread.
[[noreturn]] void overflowStack();
// The same on a thread started now, after install.
[[noreturn]] void overflowStackOnNewThread();
// A thread started before install (installOnMainThread runs meanwhile)
// overflows its stack once crash handling is on.
[[noreturn]] void overflowStackOnEarlierThread(void (*installOnMainThread)());
// 20 threads wait at a barrier, then all access address 0.
[[noreturn]] void faultOnTwentyThreads();
// 100 threads sleep; 2 others access address 0 at the same moment.
[[noreturn]] void faultBesideSleepingThreads();
// One thread accesses address 0 while 50 sleep: a process of many stacks.
[[noreturn]] void faultBesideFiftyThreads();
// A shutdown callback that accesses address 0, or that calls exit(0), then
// a fault.
[[noreturn]] void faultWithFaultingCallback();
[[noreturn]] void faultWithExitingCallback();
// Holds up the crash on its way to the handler (holdUpTheNextCrash), then
// accesses address 0: only the crash's time budget ends the process. Needs
// NORVANE_LOG_DIR.
[[noreturn]] void faultWhenHeldUp();

}  // namespace crash_host
