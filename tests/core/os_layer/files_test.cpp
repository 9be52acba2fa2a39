// Directory walks and tagged removal. The creation log's time stamp is
// checked in every record of a crash's log (report_extras_test.cpp).
#include <norvane_1/os_layer.h>

#include "test_environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

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

}  // namespace
