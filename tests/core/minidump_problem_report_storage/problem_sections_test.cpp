// The process's bitness in the problem sections. Value forms, escaping among
// them, are in value_forms_test.cpp; the exception section as written is in
// the golden report (whole_report_test.cpp), the assertion section read back
// in the JSON round trip (report_json_test.cpp).
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/problem_sections.h"

#include <gtest/gtest.h>

namespace {

using namespace norvane_1;
using internal::ProblemFacts;

TEST(ProblemSections, BitnessIsThirtyTwoOnlyForExactlyThirtyTwo) {
    struct {
        std::wstring value;
        int expected;
    } const cases[] = {
        {L"32", 1},
        {L"64", 0},
        {L"16", 0},
        {L"", -1},
    };
    for (auto const& c : cases) {
        ProcessDump d;
        ProblemFacts facts;
        internal::readProcessDumpSection(L"Description: d\nProcessBitness: " + c.value + L"\n", d, facts);
        EXPECT_EQ(facts.bitness, c.expected) << std::string(c.value.begin(), c.value.end());
    }
}

TEST(ProblemSections, UnknownBitnessIsWorkedOutFromModulePaths) {
    ProblemReportStorage report;
    EXPECT_EQ(report.getProcBitness(), -1);
    EXPECT_EQ(report.toString().find(L"ProcessBitness"), std::wstring::npos);

    ModuleInfo plain;
    plain.FullName = L"C:\\a\\bin\\x.dll";
    report.getModuleInfo().assign(3, plain);
    EXPECT_EQ(report.getProcBitness(), -1);

    ModuleInfo wide;
    wide.FullName = L"C:\\a\\bin64\\x.dll";
    report.getModuleInfo().push_back(wide);
    EXPECT_EQ(report.getProcBitness(), 0);
    EXPECT_NE(report.toString().find(L"ProcessBitness: 64\n"), std::wstring::npos);
}

}  // namespace
