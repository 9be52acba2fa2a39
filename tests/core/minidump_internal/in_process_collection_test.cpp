// The fallback the handler process asks for: a report that has the crashed
// thread's stack stays as it is. A report without it getting one is checked
// from outside in tests/crash/stack_report_test.cpp (OutsideStacks).
#include <norvane_1/handler_state.h>

#include "plain_handler_state.h"

#include "file_text.h"
#include "minidump_internal/platform.h"
#include "test_environment.h"

#include <gavrel2/file_content.h>
#include <gtest/gtest.h>

namespace {

class CollectingState : public norvane_test::PlainHandlerState {
public:
    bool run() override { return true; }
    std::int32_t collectMode() const { return m_collectMode; }
};

// The decision goes by the report's crashed thread, whatever DumpInfo says.
TEST(FallbackInProcess, AReportWithTheCrashedThreadsStackIsLeftAlone) {
    norvane_test::ScratchDirectory logs("fallback");
    norvane_test::ScopedVariable logDirectory("NORVANE_LOG_DIR", logs.path().string());
    std::wstring const reportPath = logs.withSeparator() + L"crash_info.txt";
    std::uint32_t const thread = norvane_1::platform::currentThreadId();
    norvane_1::ProblemReportStorage report;
    norvane_1::Exception exception;
    exception.code = 0xC0000005;
    exception.address = 0x1234;
    report.setException(exception);
    report.setCrashedTid(thread);
    report.setCrashedPid(norvane_1::platform::currentProcessId());
    report.getStackMap()[thread][0x7000] = 0x1234;
    ASSERT_TRUE(gavrel2::set_file_content(report.toString(), 1, reportPath));
    std::string const before = norvane_test::fileText(logs.path() / "crash_info.txt");
    CollectingState state;
    norvane_1::DumpInfo& info = state.getDumpInfo();
    info.crashInfoPath = reportPath;
    info.crashedThreadId = thread + 1;
    state.fallbackInProcess(info);
    EXPECT_EQ(state.collectMode(), 0);
    EXPECT_EQ(norvane_test::fileText(logs.path() / "crash_info.txt"), before);
}

}  // namespace
