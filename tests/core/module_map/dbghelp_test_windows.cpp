// Windows: check sums and dumps through the bound libraries.
#include "library_file.h"
#include "test_environment.h"

#include <norvane_1/dbghelp.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <fstream>

namespace norvane_test {
namespace {

std::string firstBytes(std::filesystem::path const& file) {
    std::string head(4, '\0');
    std::ifstream(file, std::ios::binary).read(&head[0], 4);
    return head;
}

TEST(DbgHelpWindows, ChecksumsComeFromImagehlp) {
    norvane_1::DbgHelp help;
    ASSERT_TRUE(help.initialize(nullptr));
    std::uint32_t const sum = help.getFileCheckSum(ownLibraryFile().wstring());
    EXPECT_NE(sum, 0u);
    EXPECT_EQ(help.getFileCheckSum(L"no such file.dll"), 0u);
}

TEST(DbgHelpWindows, DumpsOfThisProcessAreWritten) {
    ScratchDirectory scratch("dbghelp_dumps");
    norvane_1::DbgHelp help;
    ASSERT_TRUE(help.initialize(nullptr));
    help.writeOwnDump((scratch.path() / "own.dmp").wstring(), nullptr);
    help.writeProcessDump((scratch.path() / "process.dmp").wstring(), ::GetCurrentProcessId(), 1);
    EXPECT_EQ(firstBytes(scratch.path() / "own.dmp"), "MDMP");
    EXPECT_EQ(firstBytes(scratch.path() / "process.dmp"), "MDMP");
}

}  // namespace
}  // namespace norvane_test
