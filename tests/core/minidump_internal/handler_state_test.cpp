// The handler state: a fault on its worker thread, the app properties, the
// premortal log, and the in-process fallback the handler process asks for.
// A crash handed over to the worker, once, is in every crash test's report
// (TwoThreadsFaulting... counts the hand-overs); the newest log chosen, and
// text outside ASCII in it, in report_extras_test.cpp; a report without the
// crashed thread's stack getting one in stack_report_test.cpp (OutsideStacks).
#include <norvane_1/handler_state.h>

#include "plain_handler_state.h"

#include "file_text.h"
#include "minidump_internal/crash_filter.h"
#include "minidump_internal/platform.h"
#include "test_environment.h"

#include <gavrel2/file_content.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>

namespace {

// A state whose crash work does nothing, with the parts under test in reach.
class IdleState : public norvane_test::PlainHandlerState {
public:
    bool run() override { return true; }
    using HandlerState::getPremortalWords;
    std::int32_t collectMode() const { return m_collectMode; }
};

class HandlerStateTest : public ::testing::Test {
protected:
    norvane_test::ScratchDirectory logs{"state"};
    norvane_test::ScopedVariable logDirectory{"NORVANE_LOG_DIR", logs.path().string()};
};

// The worker can't hand a crash to itself: a fault of its own is passed on
// at once instead of waiting for the worker forever.
TEST_F(HandlerStateTest, AFaultOnTheWorkerIsPassedOnAtOnce) {
    struct FaultingState : norvane_test::PlainHandlerState {
        bool run() override {
            filterResult = norvane_1::dumpMiniDump(nullptr);
            return true;
        }
        std::atomic<long> filterResult{-1};
    } state;
    ASSERT_TRUE(state.init());
    state.handOverCrash([] {});
    state.join();
    EXPECT_EQ(state.filterResult, norvane_1::kContinueSearch);
}

TEST_F(HandlerStateTest, EmptyPropertyValueRemovesTheProperty) {
    IdleState state;
    state.addAppProperty(L"Theme", gavrel2::variant_t(L"dark"));
    state.addAppProperty(L"Zoom", gavrel2::variant_t(2));
    state.addAppProperty(L"Theme", gavrel2::variant_t());
    state.addAppProperty(L"Missing", gavrel2::variant_t());
    auto const properties = state.getAppPropertyMap();
    ASSERT_EQ(properties.size(), 1u);
    EXPECT_EQ(properties.at(L"Zoom").as_wstring(), L"2");
}

TEST_F(HandlerStateTest, PremortalLogIsTheFirstHundredLines) {
    std::ofstream log(logs.path() / "long.log", std::ios::binary);
    for (int i = 1; i <= 150; ++i) log << "line " << i << "\n";
    log.close();
    auto const words = IdleState().getPremortalWords(logs.path().wstring().c_str());
    ASSERT_EQ(words.size(), 100u);
    EXPECT_EQ(words.front(), L"line 1");
    EXPECT_EQ(words.back(), L"line 100");
}

// A report that has the crashed thread's stack stays as it is. The decision
// goes by the report's crashed thread, whatever DumpInfo says.
TEST_F(HandlerStateTest, FallbackLeavesAReportWithTheCrashedThreadsStackAlone) {
    std::wstring const reportPath = logs.withSeparator() + L"crash_info.txt";
    std::uint32_t const thread = norvane_1::platform::currentThreadId();
    norvane_1::ProblemReportStorage report;
    report.setException({0xC0000005, L"", 0x1234, L""});
    report.setCrashedTid(thread);
    report.setCrashedPid(norvane_1::platform::currentProcessId());
    report.getStackMap()[thread][0x7000] = 0x1234;
    ASSERT_TRUE(gavrel2::set_file_content(report.toString(), 1, reportPath));
    std::string const before = norvane_test::fileText(logs.path() / "crash_info.txt");
    IdleState state;
    norvane_1::DumpInfo& info = state.getDumpInfo();
    info.crashInfoPath = reportPath;
    info.crashedThreadId = thread + 1;
    state.fallbackInProcess(info);
    EXPECT_EQ(state.collectMode(), 0);
    EXPECT_EQ(norvane_test::fileText(logs.path() / "crash_info.txt"), before);
}

}  // namespace
