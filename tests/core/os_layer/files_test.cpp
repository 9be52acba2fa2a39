// Directory walks, tagged removal and the small file wrappers.
#include <norvane_1/os_layer.h>

#include "test_environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>

namespace {

namespace fs = std::filesystem;
using namespace norvane_1::os_layer;
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

TEST(DirectoryWalk, FailsOnShortOrMissingDirectories) {
    struct CountCalls : forEachDirItemCallback {
        bool operator()(std::wstring const&) override { return ++calls, true; }
        int calls = 0;
    } callback;
    ScratchDirectory root("walk-missing");
    EXPECT_FALSE(forEachDirItem(L"a", callback));
    EXPECT_FALSE(forEachDirItem((root.path() / "missing").wstring(), callback));
    touch(root.path() / "file");
    EXPECT_FALSE(forEachDirItem((root.path() / "file").wstring(), callback));
    EXPECT_EQ(callback.calls, 0);
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

TEST(TaggedRemoval, RecursiveRemovalOfAFileRemovesNothing) {
    ScratchDirectory root("remove-file");
    touch(root.path() / "file");
    removeDirRecursively((root.path() / "file").wstring());
    EXPECT_TRUE(fs::exists(root.path() / "file"));
}

TEST(FileWrappers, SmallOperations) {
    ScratchDirectory root("wrappers");
    std::wstring const directory = root.path().wstring();
    EXPECT_EQ(addTrailingSeparator(L""), L"");
    EXPECT_EQ(addTrailingSeparator(directory), directory + static_cast<wchar_t>(fs::path::preferred_separator));
    EXPECT_EQ(addTrailingSeparator(addTrailingSeparator(directory)), addTrailingSeparator(directory));
    EXPECT_TRUE(isDirectory(directory));
    EXPECT_GT(getFileModificationTime(addTrailingSeparator(directory)), 0);  // the directory itself
    EXPECT_EQ(getFileModificationTime(L""), -1);
    EXPECT_EQ(getFileModificationTime(directory + L"-missing"), -1);

    std::wstring const made = addTrailingSeparator(directory) + L"made";
    EXPECT_TRUE(createDirectory(made.c_str()));
    EXPECT_TRUE(createDirectory(made.c_str()));  // exists already: still true
    EXPECT_FALSE(createDirectory((addTrailingSeparator(made) + L"no/parent").c_str()));
    EXPECT_TRUE(removeDirectory(made));
    EXPECT_FALSE(removeDirectory(made));

    std::wstring const temporary = getTempFileName(directory, L"nv");
    ASSERT_FALSE(temporary.empty());
    EXPECT_EQ(temporary.compare(0, directory.size(), directory), 0);
    EXPECT_FALSE(fs::exists(temporary));  // only the name is taken, not the file
    touch(temporary);
    EXPECT_TRUE(deleteFile(temporary));
    EXPECT_FALSE(deleteFile(temporary));
}

TEST(TimeStamp, LocalTimeWithMillisecondsWithoutLeadingZeros) {
    std::wregex const shape(LR"(^\d{4}-\d\d-\d\d-\d\d-\d\d-\d\d-(0|[1-9]\d{0,2})$)");
    for (int i = 0; i < 50; ++i) {
        std::wstring const stamp = getTimeStamp();
        ASSERT_TRUE(std::regex_match(stamp, shape)) << std::string(stamp.begin(), stamp.end());
    }
}

}  // namespace
