// The "Exception", "Assertion" and "ProcessDump" sections and their shared
// keys. Value forms are in value_forms_test.cpp; the exception section as
// written is in the golden report (whole_report_test.cpp).
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/problem_sections.h"

#include <gtest/gtest.h>

namespace {

using namespace norvane_1;
using internal::ProblemFacts;

std::wstring const kProduct = L"Package ID: 1\nPackage Contents: Sample Tool\nBuild Number: 612345\n";

ProblemFacts sharedFacts(int bitness) {
    ProblemFacts facts;
    facts.crashedPid = 4120;
    facts.crashedTid = 6632;
    facts.bitness = bitness;
    facts.failedProductName = internal::failedProductName(kProduct);
    facts.reportPath = L"C:\\logs\\";
    return facts;
}

TEST(ProblemSections, AssertionExampleIsWrittenExactly) {
    Assertion a;
    a.expression = L"m_ptr != 0";
    a.file = L"core/list.h";
    a.line = 212;
    EXPECT_EQ(internal::assertionSectionText(a, sharedFacts(1)),
              L"CrashedPID: 4120\n"
              L"CrashedTID: 6632\n"
              L"Expression: m_ptr&nbsp;!=&nbsp;0\n"
              L"File: core/list.h\n"
              L"Line: 212\n"
              L"ProcessBitness: 32\n"
              L"Product: Sample Tool; 612345\n"
              L"ReportPath: C:\\logs\\\n");
}

TEST(ProblemSections, BitnessIsThirtyTwoOnlyForExactlyThirtyTwo) {
    struct { std::wstring value; int expected; } const cases[] = {
        {L"32", 1}, {L"64", 0}, {L"16", 0}, {L"", -1},
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
