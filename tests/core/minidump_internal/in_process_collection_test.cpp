// The fallback the handler process asks for: a report without the crashed
// thread's stack gets one and is written anew; a report with it stays as it
// is. The "crashed thread" is the test's own, held still in a live frame.
#include <norvane_1/handler_state.h>

#include "plain_handler_state.h"

#include "minidump_internal/platform.h"
#include "file_text.h"
#include "own_registers.h"
#include "test_environment.h"

#include <gavrel2/file_content.h>
#include <gtest/gtest.h>


namespace {

using norvane_1::ProblemReportStorage;

class CollectingState : public norvane_test::PlainHandlerState {
public:
    bool run() override { return true; }
    void setContext(norvane_1::Context const& context) { m_context = context; }
    std::int32_t collectMode() const { return m_collectMode; }
};

constexpr wchar_t kNoteName[] = L"Notiz \u00dcbersicht \u65e5\u672c";
constexpr wchar_t kNoteText[] = L"Gr\u00fc\u00dfe, \u4e16\u754c \u2713";

class FallbackInProcess : public ::testing::Test {
protected:
    norvane_test::ScratchDirectory logs{"fallback"};
    norvane_test::ScopedVariable logDirectory{"NORVANE_LOG_DIR", logs.path().string()};
    std::wstring const reportPath = logs.withSeparator() + L"crash_info.txt";
    std::uint32_t const thread = norvane_1::platform::currentThreadId();

    // The report as the export leaves it, for this thread of this process.
    ProblemReportStorage exportedReport(std::uint64_t exceptionAddress) const {
        ProblemReportStorage report;
        norvane_1::Exception exception;
        exception.code = 0xC0000005;
        exception.description = L"EXCEPTION_ACCESS_VIOLATION";
        exception.address = exceptionAddress;
        report.setException(exception);
        report.setCrashedTid(thread);
        report.setCrashedPid(norvane_1::platform::currentProcessId());
        report.setSection(kNoteName, kNoteText);
        return report;
    }

    std::string fileBytes() const { return norvane_test::fileText(logs.path() / "crash_info.txt"); }
};

TEST_F(FallbackInProcess, AReportWithoutTheStackGetsItAndIsWrittenAnew) {
    CollectingState state;
    norvane_test::withOwnRegisters([&](norvane_1::Context const& registers, std::uint64_t) {
        ProblemReportStorage report = exportedReport(registers.EIP);
        ASSERT_TRUE(gavrel2::set_file_content(report.toString(), 1, reportPath));
        state.setContext(registers);
        norvane_1::DumpInfo& info = state.getDumpInfo();
        info.crashInfoPath = reportPath;
        info.crashedThreadId = thread;
        info.exception = report.getException();
        state.fallbackInProcess(info);
        EXPECT_EQ(info.stackProcessId, norvane_1::platform::currentProcessId());
    });
    EXPECT_EQ(state.collectMode(), 1);
    ProblemReportStorage rewritten;
    rewritten.fromString(gavrel2::get_file_content(1, reportPath, 0));
    ASSERT_EQ(rewritten.getStackFramesMap().count(thread), 1u) << fileBytes();
    EXPECT_FALSE(rewritten.getModuleInfo().empty());
    EXPECT_FALSE(rewritten.getException().module.empty());
    EXPECT_EQ(rewritten.getSection(kNoteName), kNoteText);
}

// The decision goes by the report's crashed thread, whatever DumpInfo says.
TEST_F(FallbackInProcess, AReportWithTheCrashedThreadsStackIsLeftAlone) {
    ProblemReportStorage report = exportedReport(0x1234);
    report.getStackMap()[thread][0x7000] = 0x1234;
    ASSERT_TRUE(gavrel2::set_file_content(report.toString(), 1, reportPath));
    std::string const before = fileBytes();
    CollectingState state;
    norvane_1::DumpInfo& info = state.getDumpInfo();
    info.crashInfoPath = reportPath;
    info.crashedThreadId = thread + 1;
    state.fallbackInProcess(info);
    EXPECT_EQ(state.collectMode(), 0);
    EXPECT_EQ(fileBytes(), before);
}

}  // namespace
