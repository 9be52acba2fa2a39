// "Module000"... sections past the thousandth. Value forms, GUIDs among
// them, are in value_forms_test.cpp; the sections as written, and their round
// trip, in the golden report (whole_report_test.cpp); a list that ends at a
// gap, the sections behind it kept as text, in the JSON round trip of an
// on-demand report (report_json_test.cpp).
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/module_sections.h"

#include <gtest/gtest.h>

namespace {

using norvane_1::ProblemReportStorage;

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
