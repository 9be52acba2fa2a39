// "Module000"... sections. Value forms, GUIDs among them, are in
// value_forms_test.cpp.
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

bool sameGuid(Guid const& a, Guid const& b) {
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
           std::equal(std::begin(a.Data4), std::end(a.Data4), std::begin(b.Data4));
}

TEST(ModuleSections, ExamplesAreWrittenExactly) {
    ModuleInfo bare;
    bare.Base = bare.Begin = 0x7ffb10000000ULL;
    bare.End = 0x7ffb10080000ULL;
    bare.FullName = L"C:\\Windows\\System32\\kernel32.dll";
    norvane_1::StringMap sections;
    norvane_1::internal::writeModuleSections({sampleModule(), bare}, sections);
    EXPECT_EQ(sections[L"Module000"],
              L"Age: 0x0000000000000001\n"
              L"Base: 0x00007ff6a1b00000\n"
              L"Begin: 0x00007ff6a1b00000\n"
              L"End: 0x00007ff6a1c40000\n"
              L"FullName: C:\\Program&nbsp;Files\\Sample\\bin64\\sample.dll\n"
              L"Guid: 3f2504e0-4f89-11d3-9a0c-0305e82c3301\n"
              L"Size: 0x0000000000140000\n"
              L"SymbolName: C:\\Program&nbsp;Files\\Sample\\bin64\\sample.pdb\n"
              L"Timestamp: 0x000000005a1b2c3d\n");
    EXPECT_EQ(sections[L"Module001"],
              L"Age: 0x0000000000000000\n"
              L"Base: 0x00007ffb10000000\n"
              L"Begin: 0x00007ffb10000000\n"
              L"End: 0x00007ffb10080000\n"
              L"FullName: C:\\Windows\\System32\\kernel32.dll\n"
              L"Guid: 00000000-0000-0000-0000-000000000000\n"
              L"Size: 0x0000000000000000\n"
              L"SymbolName: \n"
              L"Timestamp: 0x0000000000000000\n");
}

TEST(ModuleSections, RoundTripKeepsEveryFieldAndRebuildsIndexes) {
    ProblemReportStorage written;
    ModuleInfo second = sampleModule();
    second.FullName = L"/usr/lib/x86_64-linux-gnu/libc.so.6";
    second.Begin = 0x1000;
    written.getModuleInfo() = {sampleModule(), second};
    ProblemReportStorage read;
    read.fromString(written.toString());
    ASSERT_EQ(read.getModuleInfo().size(), 2u);
    EXPECT_EQ(read.getModuleInfo()[0], sampleModule());
    EXPECT_TRUE(sameGuid(read.getModuleInfo()[0].Guid, sampleModule().Guid));
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
