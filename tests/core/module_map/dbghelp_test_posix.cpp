// Linux: file lookups confirm a file by its build id.
#include "library_file.h"

#include <norvane_1/dbghelp.h>

#include <gtest/gtest.h>

namespace norvane_test {
namespace {

TEST(DbgHelpPosix, FindsTheLibraryAndItsDebugFileByIdentity) {
    norvane_1::DbgHelp help;
    ASSERT_TRUE(help.initialize(nullptr));
    std::wstring const library = ownLibraryFile().wstring();
    norvane_1::DbgHelpFileInfo info;
    ASSERT_TRUE(help.getFileIndexInfo(library, info));
    EXPECT_EQ(help.findFile(0, library, info), library);
    EXPECT_EQ(help.findFile(1, L"", info), info.debugFile);
    info.guid.Data1 ^= 1;
    EXPECT_EQ(help.findFile(0, library, info), L"");
}

}  // namespace
}  // namespace norvane_test
