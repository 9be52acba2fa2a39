// The text of the "Process" section.
#include <norvane_1/crash_handling.h>
#include <norvane_1/string_traits.h>

#include <gavrel2/stdpaths.h>

#include <gtest/gtest.h>

namespace {

TEST(ProcessMemInfo, ThisProcessHasItsNameAndBothFigures) {
    std::wstring const text = norvane_1::getProcessMemInfo(0);
    norvane_1::StringMap keys;
    norvane_1::processSectionToMap(text, keys, {});
    EXPECT_EQ(keys[L"Process Name"], gavrel2::stdpaths::get_program_path().get_leaf());
    for (wchar_t const* figure : {L"Virtual Memory Size", L"Working Set Size"}) {
        std::wstring const value = keys[figure];
        ASSERT_GE(value.size(), 2u) << figure;
        EXPECT_EQ(value.back(), L'K');
        EXPECT_GT(std::stoull(value.substr(0, value.size() - 1)), 0u) << figure;
    }
    EXPECT_EQ(text.back(), L'\n');
}

TEST(ProcessMemInfo, AProcessThatCantBeOpenedGivesTheNameLineAlone) {
    EXPECT_EQ(norvane_1::getProcessMemInfo(0x7ffffff0u), L"Process Name: \n");
}

}  // namespace
