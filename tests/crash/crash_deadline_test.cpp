// A crash that leaves a lock of the crash path held. POSIX code only (on
// Windows a corrupted heap ends the process before any filter runs), and
// not in the address sanitizer's build.
#include "crash_run.h"
#include "expectations.h"

#include <gtest/gtest.h>

namespace {

// glibc aborts holding the heap's lock, so the crash path's first allocation
// blocks; the hand-over deadline still ends the process with exit code 3.
TEST(CrashOutcome, CorruptedHeapEndsTheProcessInsteadOfHanging) {
    crash_test::CrashRun run;
    norvane_test::ChildOutcome const outcome = run.run("heap-corruption");
    ASSERT_TRUE(outcome.finished) << "the host hung";
    EXPECT_TRUE(crash_test::handledByLibrary(outcome));
}

}  // namespace
