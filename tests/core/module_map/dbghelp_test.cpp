// DbgHelp on both platforms. The identity it reads for the project's own
// library is compared with binutils' view by a separate CTest test
// (check_debug_identity.sh).
#include "library_file.h"

#include <norvane_1/dbghelp.h>

#include <gtest/gtest.h>

#include <cstring>

namespace norvane_test {
namespace {

bool isZero(norvane_1::Guid const& guid) {
    norvane_1::Guid const zero;
    return std::memcmp(&guid, &zero, sizeof guid) == 0;
}

class DbgHelpTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_help.initialize(nullptr)); }
    norvane_1::DbgHelp m_help;
};

TEST(DbgHelpUnbound, FindsNothingBeforeInitialize) {
    norvane_1::DbgHelp help;
    norvane_1::DbgHelpFileInfo info;
    EXPECT_FALSE(help.isInitialized());
    EXPECT_FALSE(help.getFileIndexInfo(ownLibraryFile().wstring(), info));
    EXPECT_EQ(help.findFile(0, ownLibraryFile().wstring(), info), L"");
}

TEST_F(DbgHelpTest, AMissingFileGivesAnEmptyRecord) {
    norvane_1::DbgHelpFileInfo info;
    info.size = 1;
    info.debugFile = L"stale";
    EXPECT_TRUE(m_help.getFileIndexInfo(L"no such file.dll", info));
    EXPECT_TRUE(info.timestamp == 0 && info.size == 0 && info.age == 0 && info.debugFile.empty() && isZero(info.guid));
}

TEST_F(DbgHelpTest, UnknownSearchModesFindNothing) {
    norvane_1::DbgHelpFileInfo info;
    ASSERT_TRUE(m_help.getFileIndexInfo(ownLibraryFile().wstring(), info));
    EXPECT_NE(info.size, 0u);
    for (int mode : {-1, 2, 5}) EXPECT_EQ(m_help.findFile(mode, ownLibraryFile().wstring(), info), L"") << mode;
}

TEST_F(DbgHelpTest, LookupsEndWithUninitialize) {
    EXPECT_TRUE(m_help.uninitialize());
    norvane_1::DbgHelpFileInfo info;
    EXPECT_TRUE(m_help.isInitialized());
    EXPECT_FALSE(m_help.getFileIndexInfo(ownLibraryFile().wstring(), info));
}

}  // namespace
}  // namespace norvane_test
