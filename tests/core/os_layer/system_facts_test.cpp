// System facts: the Windows version table (fed version records, so it runs
// everywhere), where the temporary directory comes from, the program's own
// path, and starting a program without waiting.
#include <norvane_1/os_layer.h>

#include "os_layer/windows_version_names.h"
#include "file_text.h"
#include "test_environment.h"

#include <vantix_2_18/utf.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace {

using norvane_1::os_layer::WindowsVersion;
using norvane_test::ScopedVariable;

struct VersionCase {
    WindowsVersion version;
    wchar_t const* expected;
};

TEST(SystemFacts, WindowsVersionNames) {
    VersionCase const cases[] = {
        {{10, 0, 19045, 1, L""}, L"Windows 10 10.0.19045 "},
        {{10, 1, 1, 1, L""}, L" 10.1.1 "},  // no name: the text begins with the blank
        {{6, 1, 7601, 1, L"Service Pack 1"}, L"Windows 7 6.1.7601 Service Pack 1"},
        {{6, 1, 7601, 2, L""}, L"<unknown> 6.1.7601 "},  // a domain controller has no row
        {{5, 1, 2600, 1, L"Service Pack 3"}, L"Windows XP  5.1.2600 Service Pack 3"},
        {{4, 1, 2222, 1, L""}, L"Windows XP  4.1.2222 "},  // only the minor version counts here
    };
    for (auto const& test : cases) {
        EXPECT_EQ(norvane_1::os_layer::windowsVersionText(test.version), test.expected);
    }
}

#ifndef _WIN32
// Windows always has a temporary path of its own; Linux goes by the
// variables, in this order, taking each as it stands.
TEST(SystemFacts, TheTemporaryDirectoryFollowsTheVariablesInOrder) {
    ScopedVariable tmpdir("TMPDIR", "");
    ScopedVariable tmp("TMP", "");
    ScopedVariable temp("TEMP", "");
    EXPECT_EQ(norvane_1::os_layer::getTempDirectory(), L"");
    norvane_test::setVariable("TEMP", "/c");
    norvane_test::setVariable("TMP", "/b/");
    EXPECT_EQ(norvane_1::os_layer::getTempDirectory(), L"/b/");
    norvane_test::setVariable("TMPDIR", "/a");
    EXPECT_EQ(norvane_1::os_layer::getTempDirectory(), L"/a");
}
#endif

TEST(SystemFacts, TheProgramsOwnPathInTwoParts) {
    std::wstring const name = norvane_1::os_layer::getExecutableName();
    EXPECT_EQ(name.rfind(L"crash_handling_tests", 0), 0u);
    std::filesystem::path const whole =
        std::filesystem::path(norvane_1::os_layer::getExecutableDirectory()) / std::filesystem::path(name);
    EXPECT_TRUE(std::filesystem::exists(whole)) << whole;
}

// The program starts, the call doesn't wait for it, and an argument with a
// blank arrives as one.
TEST(SystemFacts, StartProcessDoesNotWait) {
    norvane_test::ScratchDirectory scratch("start-process");
    std::filesystem::path const record = scratch.path() / "record.txt";
    ScopedVariable const recordTool("KELMUR_FEEDBACK_RECORD", record.u8string());
    std::wstring const tool = norvane_1::os_layer::getExecutableDirectory() + L"/kelmur-feedback" +
                              (norvane_1::os_layer::getExecutableName().find(L".exe") != std::wstring::npos
                                   ? L".exe"
                                   : L"");
    std::uint32_t const pid = norvane_1::os_layer::startProcess(tool, {L"-mercy-kill=1", L"two words"}, true);
    ASSERT_NE(pid, 0u);
    std::vector<std::string> lines;
    for (int wait = 0; wait < 500 && lines.size() < 2; ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        lines = norvane_test::fileLines(record);
    }
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "-mercy-kill=1");
    EXPECT_EQ(lines[1], "two words");
    EXPECT_EQ(norvane_1::os_layer::startProcess(L"/no/such/program", {}, false), 0u);
}

}  // namespace
