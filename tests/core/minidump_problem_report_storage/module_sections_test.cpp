// "Module000"... sections as read. Value forms, GUIDs among them, are in
// value_forms_test.cpp; the sections as written, and their round trip, in
// the golden report (whole_report_test.cpp).
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/module_sections.h"

#include <gtest/gtest.h>

namespace {

using norvane_1::ProblemReportStorage;

TEST(ModuleSections, TheListEndsAtTheFirstGap) {
    ProblemReportStorage report;
    report.fromString(L"[Module000]\nFullName: a\n\n[Module002]\nFullName: c\n\n[Module0]\nFullName: z\n");
    ASSERT_EQ(report.getModuleInfo().size(), 1u);
    EXPECT_EQ(report.getModuleInfo()[0].FullName, L"a");
    // Sections behind the gap are written again under their own names.
    EXPECT_NE(report.toString().find(L"[Module002]\nFullName: c\n"), std::wstring::npos);

    ProblemReportStorage noModules;
    noModules.fromString(L"[Module0]\nFullName: z\n");
    EXPECT_TRUE(noModules.getModuleInfo().empty());
}

TEST(ModuleSections, PositionsAboveNineHundredNinetyNineGetFourDigits) {
    ProblemReportStorage report;
    report.getModuleInfo().resize(1001);
    std::wstring const text = report.toString();
    auto const m1000 = text.find(L"[Module1000]");
    auto const m101 = text.find(L"[Module101]");
    ASSERT_NE(m1000, std::wstring::npos);
    EXPECT_LT(m1000, m101);  // sections are ordered as text
    ProblemReportStorage read;
    read.fromString(text);
    EXPECT_EQ(read.getModuleInfo().size(), 1001u);
}

}  // namespace
