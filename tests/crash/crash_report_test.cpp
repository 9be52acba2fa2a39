// Every way the sample host can crash ends the same way: exit code 3, a
// complete crash_info.txt, and the handler started with the fixed command
// line. What the handler makes of it is checked in handler_command_test.cpp.
#include "crash_run.h"
#include "expectations.h"
#include "platform_crash.h"

#include <norvane_1/string_traits.h>

#include <gtest/gtest.h>

#include <regex>

namespace {

using crash_test::CrashRun;
using crash_test::wide;

struct CrashKind {
    char const* kind;
    std::uint64_t code;
    wchar_t const* description;
    wchar_t const* uncaughtType = nullptr;  // of the UncaughtException section, which only it may have
};

// The case's name, which ctest shows in the test's name.
void PrintTo(CrashKind const& test, std::ostream* out) { *out << test.kind; }

class EachCrashKind : public testing::TestWithParam<CrashKind> {};

TEST_P(EachCrashKind, EndsWithExitCode3AndACompleteReport) {
    CrashRun run;
    ASSERT_TRUE(crash_test::handledByLibrary(run.run(GetParam().kind))) << run.hostOutput();
    ASSERT_TRUE(run.reportWritten());
    norvane_1::ProblemReportStorage report = run.readReport();

    EXPECT_EQ(report.getException().code, GetParam().code);
    EXPECT_EQ(report.getException().description, GetParam().description);
    EXPECT_EQ(report.getCrashedPid(), run.hostPid());
    std::uint32_t const threadId = report.getCrashedTid();
    ASSERT_NE(threadId, 0u);
    ASSERT_EQ(report.getContextMap().count(threadId), 1u) << "no context of the crashed thread";
    crash_test::expectAllRegisters(report, threadId);
    EXPECT_NE(report.getException().address, 0u);
    EXPECT_EQ(report.getException().address, report.getContextMap()[threadId].EIP);

    norvane_1::StringMap const process = crash_test::sectionKeys(report, L"Process");
    std::wregex const kilobytes(L"[0-9]+K");
    EXPECT_EQ(norvane_1::get(process, L"Process Name"), wide(std::string(crash_test::kHostProcessName)));
    EXPECT_TRUE(std::regex_match(norvane_1::get(process, L"Virtual Memory Size"), kilobytes));
    EXPECT_TRUE(std::regex_match(norvane_1::get(process, L"Working Set Size"), kilobytes));
    EXPECT_EQ(report.getDumpValue(L"Path"), wide(run.logDirectory() / "crash.dmp"));
    EXPECT_EQ(norvane_1::get(crash_test::sectionKeys(report, L"ClientInfo"), L"CrashKind"),
              wide(std::string(GetParam().kind)));
    EXPECT_EQ(run.handlerArguments(), crash_test::fixedHandlerArguments(run.logDirectory(), run.hostPid()));

    norvane_1::StringMap const uncaught = crash_test::sectionKeys(report, L"UncaughtException");
    if (GetParam().uncaughtType == nullptr) {
        EXPECT_TRUE(uncaught.empty());
    } else {
        EXPECT_EQ(norvane_1::string_traits::decodeString(norvane_1::get(uncaught, L"Type")), GetParam().uncaughtType);
        EXPECT_EQ(norvane_1::string_traits::decodeString(norvane_1::get(uncaught, L"What")), L"no one catches this");
    }
    // The registers handed to runExceptionHandler are the ones reported, not
    // some taken on the way.
    if (std::string(GetParam().kind) == "run-exception-handler") {
        std::smatch captured;
        std::string const output = run.hostOutput();
        ASSERT_TRUE(std::regex_search(output, captured, std::regex("captured instruction pointer (0x[0-9a-f]{16})")))
            << output;
        EXPECT_EQ(norvane_1::string_traits::addrToString(report.getException().address), wide(captured[1].str()));
    }
}

INSTANTIATE_TEST_SUITE_P(CrashHost, EachCrashKind,
                         testing::Values(CrashKind{"access-violation", 0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
                                         CrashKind{"divide-by-zero", 0xC0000094, L"EXCEPTION_INT_DIVIDE_BY_ZERO"},
                                         CrashKind{"abort", 0x412, L"ABORT_CALL"},
                                         // The C++ run-time on both platforms ends a pure call in abort.
                                         CrashKind{"pure-virtual", 0x412, L"ABORT_CALL"},
                                         // The run-time ends it in terminate and abort; the report names it.
                                         CrashKind{"uncaught-exception", 0x412, L"ABORT_CALL", L"std::runtime_error"},
                                         CrashKind{"run-exception-handler", 0x80000003, L"EXCEPTION_BREAKPOINT"},
                                         // A crash passed on leaves handling usable once the host installs again.
                                         CrashKind{"pass-on-then-fault", 0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
                                         // A reset from inside the crash is refused at once, never waited for.
                                         CrashKind{"reset-in-shutdown-callback", 0xC0000005,
                                                   L"EXCEPTION_ACCESS_VIOLATION"},
                                         CrashKind{"illegal-instruction", 0xC000001D, L"EXCEPTION_ILLEGAL_INSTRUCTION"},
                                         CrashKind{"breakpoint", 0x80000003, L"EXCEPTION_BREAKPOINT"},
                                         // Many faults at once give one report, of one of them.
                                         CrashKind{"twenty-threads", 0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
                                         CrashKind{"sleeping-threads", 0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
                                         // The callback's own fault abandons the callback; the first crash is reported.
                                         CrashKind{"faulting-callback", 0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
                                         // exit() inside the callback: the crash goes on from the exit's clean-up.
                                         CrashKind{"exiting-callback", 0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
                                         // Ours must be back within the 1.5 s the host waits.
                                         CrashKind{"replace-filter", 0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"}));

// Every thread has room for the crash path once its stack is gone. Not under
// the thread sanitizer, whose own bookkeeping runs on the exhausted stack and
// which keeps the library from starting threads with a stack in reserve.
#ifndef NORVANE_THREAD_SANITIZER
INSTANTIATE_TEST_SUITE_P(StackOverflow, EachCrashKind,
                         testing::Values(CrashKind{"stack-overflow", 0xC00000FD, L"EXCEPTION_STACK_OVERFLOW"},
                                         CrashKind{"stack-overflow-thread", 0xC00000FD, L"EXCEPTION_STACK_OVERFLOW"},
                                         CrashKind{"stack-overflow-early-thread", 0xC00000FD,
                                                   L"EXCEPTION_STACK_OVERFLOW"}));
#endif

}  // namespace
