// "Module000"... sections. Value forms, GUIDs among them, are in
// value_forms_test.cpp; the sections as written are in the golden report.
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/module_sections.h"

#include <gtest/gtest.h>

namespace {

using norvane_1::Guid;
using norvane_1::ModuleInfo;
using norvane_1::ProblemReportStorage;

ModuleInfo sampleModule() {
    ModuleInfo m;
    m.Age = 1;
    m.Base = 0x7ff6a1b00000ULL;
    m.Begin = 0x7ff6a1b00000ULL;
    m.End = 0x7ff6a1c40000ULL;
    m.FullName = L"C:\\Program Files\\Sample\\bin64\\sample.dll";
    m.Guid = Guid{0x3f2504e0, 0x4f89, 0x11d3, {0x9a, 0x0c, 0x03, 0x05, 0xe8, 0x2c, 0x33, 0x01}};
    m.Size = 0x140000;
    m.SymbolName = L"C:\\Program Files\\Sample\\bin64\\sample.pdb";
    m.Timestamp = 0x5a1b2c3d;
    return m;
}

TEST(ModuleSections, RoundTripKeepsEveryField) {
    ProblemReportStorage written;
    ModuleInfo second = sampleModule();
    second.FullName = L"/usr/lib/x86_64-linux-gnu/libc.so.6";
    second.Begin = 0x1000;
    written.getModuleInfo() = {sampleModule(), second};
    ProblemReportStorage read;
    read.fromString(written.toString());
    ASSERT_EQ(read.getModuleInfo().size(), 2u);
    EXPECT_EQ(read.getModuleInfo()[0], sampleModule());
    EXPECT_EQ(norvane_1::internal::guidToString(read.getModuleInfo()[0].Guid), L"3f2504e0-4f89-11d3-9a0c-0305e82c3301");
    EXPECT_EQ(read.getModuleInfo()[0].Age, 1u);
    EXPECT_EQ(read.getModuleInfo()[1], second);
}

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

TEST(ModuleSections, WrappedValuesAreJoinedAndUnknownKeysEndValues) {
    ProblemReportStorage report;
    report.fromString(L"[Module000]\nFullName: C:\\a\nb.dll\nChecksum: 12\nGuid: 00000000-0000-0000-0000-000000000001\n");
    ASSERT_EQ(report.getModuleInfo().size(), 1u);
    EXPECT_EQ(report.getModuleInfo()[0].FullName, L"C:\\ab.dll");
    EXPECT_EQ(report.getModuleInfo()[0].Guid.Data4[7], 1);
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
