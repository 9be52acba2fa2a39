// How a crash ends when the handler declines it, is missing, or crash
// handling is off; and what install and reset leave of the library's threads.
#include "crash_run.h"
#include "expectations.h"
#include "platform_crash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace {

using crash_test::CrashRun;

// Records of the creation log with this text, whatever their label and time.
std::ptrdiff_t recordsSaying(CrashRun const& run, std::string const& text) {
    auto const log = run.creationLog();
    return std::count_if(log.begin(), log.end(), [&](std::string const& line) {
        return line.size() > text.size() &&
               line.compare(line.size() - text.size() - 3, std::string::npos, " : " + text) == 0;
    });
}

// Also when the host has the system reap its children: the handler's exit
// code must still reach the library.
TEST(CrashOutcome, HandlerExit6PassesTheCrashToThePlatform) {
    for (bool const hostIgnoresChildren : {false, true}) {
        SCOPED_TRACE(hostIgnoresChildren ? "host ignores child processes" : "plain host");
        CrashRun run;
        run.set("KELMUR_FEEDBACK_EXIT_CODE", std::string("6"));
        if (hostIgnoresChildren) run.set("CRASH_HOST_IGNORE_CHILDREN", std::string("1"));
        norvane_test::ChildOutcome const outcome = run.run("access-violation");
        EXPECT_TRUE(crash_test::endedByPlatformAccessViolation(outcome)) << norvane_test::describe(outcome);
        EXPECT_TRUE(run.reportWritten());
    }
}

// resetAndAbort takes handling off first: the abort is the platform's, and
// no report comes of it.
TEST(CrashOutcome, ResetAndAbortLeavesNoReport) {
    CrashRun run;
    norvane_test::ChildOutcome const outcome = run.run("reset-and-abort");
    EXPECT_TRUE(outcome.finished) << norvane_test::describe(outcome);
    EXPECT_FALSE(run.reportWritten());
    EXPECT_FALSE(run.handlerArguments().has_value());
    EXPECT_EQ(recordsSaying(run, "Exception report initialized"), 0);
}

struct HandlerLookup {
    char const* name;
    bool handlerNamedAbsolutely;  // NORVANE_CRASH_HANDLER: the real handler's absolute path
    char const* missingHandler;   // NORVANE_CRASH_HANDLER: this path in the scratch directory
    bool emptyProgramDirectory;   // KELMUR_PRODUCT_BIN_DIR: an empty directory
    bool handlerStarts;
};

// The case's name, which ctest shows in the test's name.
void PrintTo(HandlerLookup const& test, std::ostream* out) { *out << test.name; }

class HandlerLookups : public testing::TestWithParam<HandlerLookup> {};

// Found or not, the report is written and the process ends with 3.
TEST_P(HandlerLookups, DecideWhetherTheHandlerStarts) {
    HandlerLookup const& lookup = GetParam();
    CrashRun run;
    if (lookup.handlerNamedAbsolutely) {
        run.set("NORVANE_CRASH_HANDLER", norvane_test::programBesideThisOne("kelmur-feedback").u8string());
    }
    if (lookup.missingHandler) {
        run.set("NORVANE_CRASH_HANDLER", (run.scratch() / lookup.missingHandler).u8string());
    }
    if (lookup.emptyProgramDirectory) {
        std::filesystem::path const empty = run.scratch() / "empty bin";
        std::filesystem::create_directories(empty);
        run.set("KELMUR_PRODUCT_BIN_DIR", empty.u8string());
    }
    EXPECT_TRUE(crash_test::handledByLibrary(run.run("access-violation")));
    EXPECT_TRUE(run.reportWritten());
    EXPECT_EQ(run.handlerArguments().has_value(), lookup.handlerStarts);
}

INSTANTIATE_TEST_SUITE_P(CrashOutcome, HandlerLookups,
                         testing::Values(HandlerLookup{"variableWinsOverProgramDirectory", true, nullptr, true, true},
                                         HandlerLookup{"variableNamesMissingFile", false, "no such handler", false,
                                                       false},
                                         HandlerLookup{"programDirectoryWithoutHandler", false, nullptr, true, false}));

TEST(CrashOutcome, DisabledHandlingLeavesTheCrashToThePlatform) {
    CrashRun run;
    run.set("NORVANE_DISABLE_EXCEPTION_HANDLER", std::string("1"));
    // The sanitizer build's own SEGV handler would otherwise take the crash.
    run.set("ASAN_OPTIONS", std::string("handle_segv=0"));
    norvane_test::ChildOutcome const outcome = run.run("access-violation");
    EXPECT_TRUE(crash_test::endedByPlatformAccessViolation(outcome)) << norvane_test::describe(outcome);
    EXPECT_FALSE(run.reportWritten());
    EXPECT_FALSE(run.handlerArguments());
}

// A second thread's fault may be delivered before the owner has taken the
// hooks off, while it does, or after: whenever it comes, it is held until
// the owner has decided, and the process ends with one report. At once, the
// faults meet in dumpMiniDump; apart, the second lands anywhere on the
// owner's way. Two aborts take the abort hook's way instead of the filter's.
TEST(CrashOutcome, TwoThreadsFaultingEndWithExitCode3AndOneReport) {
// A run takes ten times as long under the thread sanitizer, and three times
// under Wine; scripts/zoo.sh repeats these ways more.
#if defined(NORVANE_THREAD_SANITIZER)
    constexpr int kAttempts = 5;
#elif defined(_WIN32)
    constexpr int kAttempts = 10;
#else
    constexpr int kAttempts = 30;
#endif
    for (char const* kind : {"two-threads", "two-threads-apart", "two-threads-abort"}) {
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            SCOPED_TRACE(std::string(kind) + ", attempt " + std::to_string(attempt));
            CrashRun run;
            ASSERT_TRUE(crash_test::handledByLibrary(run.run(kind)));
            EXPECT_TRUE(run.reportWritten());
            // One owner: one report begun, one hand-over to the worker.
            EXPECT_EQ(recordsSaying(run, "Exception report initialized"), 1);
            EXPECT_EQ(recordsSaying(run, "Worker thread took over..."), 1);
        }
    }
}

// A fault that meets the reset half-way is either handled or left to the
// platform, never stuck between the two. The host's exit meeting another
// thread's crash may also come first. No handler is started for the exit:
// under Wine a child started as its parent is ended can stay stuck in its
// start-up for good, holding the test's output open.
TEST(CrashOutcome, FaultDuringResetOrExitEndsTheProcess) {
    for (bool const exiting : {false, true}) {
        for (int attempt = 0; attempt < 20; ++attempt) {
            CrashRun run;
            run.set("ASAN_OPTIONS", std::string("handle_segv=0"));
            if (exiting) run.set("NORVANE_CRASH_HANDLER", (run.scratch() / "no handler").u8string());
            norvane_test::ChildOutcome const outcome = run.run(exiting ? "exit-during-crash" : "fault-during-reset");
            ASSERT_TRUE(outcome.finished) << "the host hung, attempt " << attempt;
            bool const exitedFirst = exiting && outcome.exited && outcome.exitCode == 0;
            EXPECT_TRUE(crash_test::handledByLibrary(outcome) || crash_test::endedByPlatformAccessViolation(outcome) ||
                        exitedFirst)
                << norvane_test::describe(outcome) << ", attempt " << attempt << (exiting ? ", exiting" : "");
        }
    }
}

// The host has loaded the library before main(); until install only its own
// thread runs.
TEST(CrashOutcome, LoadingStartsNoThreadAndResetLeavesNone) {
    CrashRun run;
    norvane_test::ChildOutcome const outcome = run.run("reset-threads");
    ASSERT_TRUE(outcome.finished && outcome.exited && outcome.exitCode == 0) << norvane_test::describe(outcome);
    std::string const output = run.hostOutput();
    std::smatch counts;
    ASSERT_TRUE(std::regex_search(output, counts,
                                  std::regex("before install: (\\d+)\\s+threads after install: (\\d+)\\s+"
                                             "threads after reset: (\\d+)")))
        << output;
#if defined(NORVANE_THREAD_SANITIZER)
    // Its run-time starts a thread of its own once the process has a second.
    int const runtimeThreads = 1;
#else
    int const runtimeThreads = 0;
    EXPECT_EQ(counts[1], "1") << "loading the library started a thread";
#endif
    EXPECT_GT(std::stoi(counts[2]), std::stoi(counts[1])) << "install started no thread: the count is wrong";
    EXPECT_GE(std::stoi(counts[3]), std::stoi(counts[1]));
    EXPECT_LE(std::stoi(counts[3]), std::stoi(counts[1]) + runtimeThreads) << "reset left a thread running";
}

}  // namespace
