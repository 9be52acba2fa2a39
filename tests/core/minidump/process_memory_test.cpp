// The text of the "Process" section of a process that can't be opened. That
// of a crashed process is checked in every crash's report
// (crash_report_test.cpp).
#include <norvane_1/crash_handling.h>

#include <gtest/gtest.h>

namespace {

TEST(ProcessMemInfo, AProcessThatCantBeOpenedGivesTheNameLineAlone) {
    EXPECT_EQ(norvane_1::getProcessMemInfo(0x7ffffff0u), L"Process Name: \n");
}

}  // namespace
