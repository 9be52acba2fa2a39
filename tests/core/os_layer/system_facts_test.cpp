// System facts: where the temporary directory comes from, and starting a
// program without waiting.
#include <norvane_1/os_layer.h>

#include "file_text.h"
#include "test_environment.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace {

using norvane_test::ScopedVariable;

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

// The program starts, the call doesn't wait for it, and an argument with a
// blank arrives as one.
TEST(SystemFacts, StartProcessDoesNotWait) {
    norvane_test::ScratchDirectory scratch("start-process");
    std::filesystem::path const record = scratch.path() / "record.txt";
    ScopedVariable const recordTool("KELMUR_FEEDBACK_RECORD", record.u8string());
    std::wstring const tool = norvane_1::os_layer::getExecutableDirectory() + L"/kelmur-feedback" +
                              (norvane_1::os_layer::getExecutableName().find(L".exe") != std::wstring::npos ? L".exe"
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
