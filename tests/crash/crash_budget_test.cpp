// Crashes held up on their way to the handler: the time budget ends them.
#include "crash_run.h"
#include "expectations.h"

#include <gtest/gtest.h>

namespace {

// Held up for good (a log the worker reads that never answers on Linux, a
// shutdown callback waiting for a lock kept by another thread on Windows),
// the crash ends at its budget, set here far below the default 30 s and
// the run's 60 s, with a line that says why. The handler never starts.
TEST(CrashBudget, HeldUpCrashEndsWithExitCode3AndSaysWhy) {
    crash_test::CrashRun run;
    run.set("NORVANE_CRASH_BUDGET_MS", std::string("1500"));
    norvane_test::ChildOutcome const outcome = run.run("held-up");
    ASSERT_TRUE(outcome.finished) << "the host hung";
    EXPECT_TRUE(crash_test::handledByLibrary(outcome));
    EXPECT_NE(run.hostOutput().find("did not start within 1500 ms"), std::string::npos) << run.hostOutput();
    EXPECT_FALSE(run.handlerArguments());
}

#if !defined(_WIN32) && !defined(NORVANE_ADDRESS_SANITIZER)
// glibc aborts holding the heap's lock, so the crash path's first allocation
// blocks; the budget still ends the process with exit code 3. (On Windows a
// corrupted heap ends the process before any filter runs; the address
// sanitizer reports the double free its own way.)
TEST(CrashBudget, CorruptedHeapEndsTheProcessInsteadOfHanging) {
    crash_test::CrashRun run;
    run.set("NORVANE_CRASH_BUDGET_MS", std::string("3000"));
    norvane_test::ChildOutcome const outcome = run.run("heap-corruption");
    ASSERT_TRUE(outcome.finished) << "the host hung";
    EXPECT_TRUE(crash_test::handledByLibrary(outcome));
}
#endif

}  // namespace
