// Directory walks, tagged removal, where the temporary directory comes from,
// and starting a program without waiting. The creation log's time stamp is
// checked in every record of a crash's log (report_extras_test.cpp).
#include <norvane_1/os_layer.h>

#include "file_text.h"
#include "test_environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace norvane_1::os_layer;
using norvane_test::ScopedVariable;
using norvane_test::ScratchDirectory;

void touch(fs::path const& file) { std::ofstream(file) << "x"; }

std::vector<std::wstring> contentOf(fs::path const& directory) {
    std::vector<std::wstring> items;
    EXPECT_TRUE(enumDirContent(directory.wstring(), items));
    std::sort(items.begin(), items.end());
    return items;
}

TEST(DirectoryWalk, ListsItemsWithFullPathsAndNoDots) {
    ScratchDirectory root("walk");
    fs::create_directories(root.path() / "sub" / "deeper");
    touch(root.path() / "a.txt");
    auto const items = contentOf(root.path());
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0], addTrailingSeparator(root.path().wstring()) + L"a.txt");
    std::vector<std::wstring> directories;
    EXPECT_TRUE(enumDirs(root.path().wstring(), directories));
    EXPECT_EQ(directories, std::vector<std::wstring>{addTrailingSeparator(root.path().wstring()) + L"sub"});
    EXPECT_TRUE(contentOf(root.path() / "sub" / "deeper").empty());  // empty: true, no items
}

TEST(TaggedRemoval, OnlyADirectoryWithTheMarkerGoes) {
    ScratchDirectory root("tagged");
    fs::path const untagged = root.path() / "untagged";
    fs::create_directories(untagged / "child");
    touch(untagged / "child" / "norvane.tag");  // a marker deeper down doesn't count
    EXPECT_FALSE(removeTaggedDirectory(untagged.wstring()));
    EXPECT_TRUE(fs::exists(untagged / "child" / "norvane.tag"));

    fs::path const tagged = root.path() / "tagged";
    fs::create_directories(tagged / "a" / "b");
    touch(tagged / "a" / "b" / "file");
    touch(tagged / getTagFileName());
    EXPECT_TRUE(removeTaggedDirectory(tagged.wstring()));
    EXPECT_FALSE(fs::exists(tagged));
}

#ifndef _WIN32
// Windows always has a temporary path of its own; Linux goes by the
// variables, in this order, taking each as it stands.
TEST(SystemFacts, TheTemporaryDirectoryFollowsTheVariablesInOrder) {
    ScopedVariable tmpdir("TMPDIR", "");
    ScopedVariable tmp("TMP", "");
    ScopedVariable temp("TEMP", "");
    EXPECT_EQ(getTempDirectory(), L"");
    norvane_test::setVariable("TEMP", "/c");
    norvane_test::setVariable("TMP", "/b/");
    EXPECT_EQ(getTempDirectory(), L"/b/");
    norvane_test::setVariable("TMPDIR", "/a");
    EXPECT_EQ(getTempDirectory(), L"/a");
}
#endif

// The program starts, the call doesn't wait for it, and an argument with a
// blank arrives as one.
TEST(SystemFacts, StartProcessDoesNotWait) {
    ScratchDirectory scratch("start-process");
    fs::path const record = scratch.path() / "record.txt";
    ScopedVariable const recordTool("KELMUR_FEEDBACK_RECORD", record.u8string());
    std::wstring const tool = getExecutableDirectory() + L"/kelmur-feedback" +
                              (getExecutableName().find(L".exe") != std::wstring::npos ? L".exe" : L"");
    std::uint32_t const pid = startProcess(tool, {L"-mercy-kill=1", L"two words"}, true);
    ASSERT_NE(pid, 0u);
    std::vector<std::string> lines;
    for (int wait = 0; wait < 500 && lines.size() < 2; ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        lines = norvane_test::fileLines(record);
    }
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "-mercy-kill=1");
    EXPECT_EQ(lines[1], "two words");
    EXPECT_EQ(startProcess(L"/no/such/program", {}, false), 0u);
}

}  // namespace
