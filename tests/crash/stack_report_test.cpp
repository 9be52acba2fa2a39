// The stack in the report of a crash collected in-process (collect mode 1):
// the crashed thread's stack from the fault on, the modules it passes
// through with their debug identities, and what the two variables of the
// collection change. The symbols of each frame are checked against the
// program's own by check_stack_chain.sh.
#include "crash_run.h"
#include "expectations.h"
#include "platform_crash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace {

using crash_test::CrashRun;
using crash_test::wide;

constexpr std::uint32_t kExceptionFrame = 4;
constexpr std::uint32_t kUnwoundFrame = 2;

void collectInProcess(CrashRun& run) { run.set("NORVANEMINIDUMP1_INPROCESS_COLLECT", std::string("1")); }

std::wstring leafOf(std::wstring const& path) { return path.substr(path.find_last_of(L"/\\") + 1); }

// A clean frame's module column is read as it stands: from a file with CR LF
// line ends (Windows) it keeps the CR.
std::wstring moduleOf(norvane_1::StackFrame const& frame) {
    std::wstring module = frame.module;
    if (!module.empty() && module.back() == L'\r') module.pop_back();
    return module;
}

// A module whose file name begins with `leaf` (a library's file may carry
// its version behind it).
bool listsModule(norvane_1::ProblemReportStorage& report, std::wstring const& leaf) {
    auto const& modules = report.getModuleInfo();
    return std::any_of(modules.begin(), modules.end(),
                       [&](norvane_1::ModuleInfo const& m) { return leafOf(m.FullName).rfind(leaf, 0) == 0; });
}

// The crashed thread's clean stack: at least `least` frames, from the fault.
testing::AssertionResult startsAtTheFault(norvane_1::ProblemReportStorage& report, std::size_t least) {
    auto const stack = report.getStackFramesMap().find(report.getCrashedTid());
    if (stack == report.getStackFramesMap().end() || stack->second.size() < least) {
        return testing::AssertionFailure() << "no stack of " << least << " frames or more for the crashed thread";
    }
    if (stack->second[0].kind != kExceptionFrame || stack->second[0].address != report.getException().address) {
        return testing::AssertionFailure() << "the crashed thread's stack doesn't begin at the fault";
    }
    return testing::AssertionSuccess();
}

TEST(InProcessStack, StartsAtTheFaultAndNamesEachFramesModule) {
    CrashRun run;
    collectInProcess(run);
    ASSERT_TRUE(crash_test::handledByLibrary(run.run("call-chain"))) << run.hostOutput();
    // The stack is in the report: the handler gets 0 to read, the report keeps
    // the real pid.
    EXPECT_EQ(run.handlerArguments(), crash_test::fixedHandlerArguments(run.logDirectory(), 0));
    norvane_1::ProblemReportStorage report = run.readReport();
    EXPECT_EQ(report.getCrashedPid(), run.hostPid());
    norvane_1::Exception const& exception = report.getException();
    std::wstring const host = wide(std::string(crash_test::kHostProcessName));
    EXPECT_EQ(exception.module, host);
    EXPECT_FALSE(report.getFailedProductName().empty());

    // The fault, the three of the chain, and their caller at least.
    ASSERT_TRUE(startsAtTheFault(report, 5)) << run.logFile("crash_info.txt");
    norvane_1::CleanStack const& frames = report.getStackFramesMap()[report.getCrashedTid()];
    EXPECT_EQ(moduleOf(frames[0]), host);
    for (std::size_t i = 1; i < 5; ++i) {
        EXPECT_EQ(frames[i].kind, kUnwoundFrame) << "frame " << i;
        EXPECT_EQ(moduleOf(frames[i]), host) << "frame " << i;
    }
    // Only the modules the stack passes through: not this library.
    for (std::size_t i = 0; i < frames.size(); ++i)
        EXPECT_TRUE(listsModule(report, moduleOf(frames[i]))) << "frame " << i;
    EXPECT_FALSE(listsModule(report, wide(std::string(crash_test::kLibraryFileName))));
    EXPECT_EQ(report.getStackMap().count(report.getCrashedTid()), 0u) << "a raw stack beside the clean one";

    norvane_1::ModuleInfo program;
    ASSERT_TRUE(report.findModule(exception.address, program));
    EXPECT_FALSE(program.SymbolName.empty());
    EXPECT_NE(program.Guid.Data1, 0u);
    std::regex const collected("norvane_1::HandlerState::inProcessStackCollect : .* : Stack successfully collected");
    auto const log = run.creationLog();
    EXPECT_TRUE(std::any_of(log.begin(), log.end(),
                            [&](std::string const& line) { return std::regex_match(line, collected); }));
}

struct CollectionCase {
    char const* name;
    bool rawStackAsked;
    bool moduleMapKept;
    bool cleanStack;
    bool wholeModuleList;
};

void PrintTo(CollectionCase const& test, std::ostream* out) { *out << test.name; }

class CollectionVariables : public testing::TestWithParam<CollectionCase> {};

// A whole list names this library too, which no frame of the crashed
// thread passes through.
TEST_P(CollectionVariables, ChooseTheStackAndTheModuleList) {
    CrashRun run;
    collectInProcess(run);
    if (GetParam().rawStackAsked) run.set("NORVANE1_COLLECT_RAW_STACK", std::string("1"));
    if (GetParam().moduleMapKept) run.set("NORVANE1_KEEP_MODULEMAP", std::string("1"));
    ASSERT_TRUE(crash_test::handledByLibrary(run.run("call-chain")));
    norvane_1::ProblemReportStorage report = run.readReport();
    std::uint32_t const thread = report.getCrashedTid();
    EXPECT_EQ(report.getStackFramesMap().count(thread), GetParam().cleanStack ? 1u : 0u);
    EXPECT_EQ(report.getStackMap().count(thread), GetParam().cleanStack ? 0u : 1u);
    EXPECT_EQ(listsModule(report, wide(std::string(crash_test::kLibraryFileName))), GetParam().wholeModuleList);
}

INSTANTIATE_TEST_SUITE_P(CrashHost, CollectionVariables,
                         testing::Values(CollectionCase{"rawStack", true, false, false, true},
                                         CollectionCase{"keepModuleMap", false, true, true, true},
                                         CollectionCase{"both", true, true, false, true}));

// With no collect variable the handler reads every thread's stack from
// outside, the crashed thread's from the fault. When it can't, it asks the
// crashed process for its stack over the task service, whose fallback runs
// there.
TEST(OutsideStacks, ComeFromOutsideOrFromTheCrashedProcessOverTheTaskService) {
    std::string const server = "norvane_1::ExecuteMinidumpTaskThread::operator\\(\\) : .* : ";
    std::string const fallback =
        "norvane_1::HandlerState::fallbackInProcess : .* : Fallback to in-proc stack collect...";
    for (bool const outsideFails : {false, true}) {
        SCOPED_TRACE(outsideFails ? "outside fails" : "outside works");
        CrashRun run;
        if (outsideFails) run.set("KELMUR_FEEDBACK_NO_OUTSIDE_STACKS", std::string("1"));
        ASSERT_TRUE(crash_test::handledByLibrary(run.run("call-chain"))) << run.hostOutput();
        norvane_1::ProblemReportStorage report = run.readReport();
        ASSERT_TRUE(startsAtTheFault(report, 5)) << run.logFile("crash_info.txt");
        EXPECT_EQ(moduleOf(report.getStackFramesMap()[report.getCrashedTid()][1]),
                  wide(std::string(crash_test::kHostProcessName)));
        auto const log = run.creationLog();
        if (!outsideFails) {
            // The host's main thread and the library's own threads at the least.
            EXPECT_GE(report.getStackFramesMap().size(), 3u);
            EXPECT_TRUE(crash_test::recordsInOrder(
                log, {"kelmur_feedback::collectCrashStacks : .* : Stacks of [0-9]+ threads collected from outside"}));
            continue;
        }
        EXPECT_TRUE(crash_test::recordsInOrder(
            log,
            {"kelmur_feedback::collectCrashStacks : .* : Stacks from outside failed .*, asking the crashed process",
             fallback}));
        EXPECT_TRUE(crash_test::recordsInOrder(
            log, {server + "Got minidump task <fallbackInProc>", fallback, server + "Replied <PASS> to THE_PIPE_SC",
                  "norvane_1::stopExecuteMinidumpTaskThread : .* : EMT Service stopped!"}));
    }
}

class DamagedStacks : public testing::TestWithParam<char const*> {};

// A crash report and the library's exit code, never a second fault on the
// worker and never a hang.
TEST_P(DamagedStacks, StillGiveAReportWithAStack) {
    CrashRun run;
    collectInProcess(run);
    ASSERT_TRUE(crash_test::handledByLibrary(run.run(GetParam()))) << run.hostOutput();
    norvane_1::ProblemReportStorage report = run.readReport();
    EXPECT_TRUE(startsAtTheFault(report, 1)) << run.logFile("crash_info.txt");
}

INSTANTIATE_TEST_SUITE_P(CrashHost, DamagedStacks, testing::Values("garbage-stack", "unreadable-stack"));

}  // namespace
