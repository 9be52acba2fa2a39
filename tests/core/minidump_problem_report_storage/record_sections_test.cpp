// The sections of the report's records: contexts, stacks, modules and the
// problem. Value forms are in value_forms_test.cpp; the sections as written,
// and their round trip, in the golden report (whole_report_test.cpp); a
// module list that ends at a gap, and the assertion section read back, in
// the JSON round trip (report_json_test.cpp).
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/context_sections.h"
#include "minidump_problem_report_storage/problem_sections.h"
#include "minidump_problem_report_storage/stack_sections.h"

#include <gtest/gtest.h>

namespace {

using namespace norvane_1;

// Each register has a value of its own, so that one written or read under
// another's key shows.
TEST(ContextSections, EveryRegisterIsWrittenUnderItsOwnKeyAndReadBack) {
    std::pair<wchar_t const*, std::uint64_t Context::*> const registers[] = {
        {L"EAX", &Context::EAX}, {L"EBX", &Context::EBX}, {L"ECX", &Context::ECX}, {L"EDX", &Context::EDX},
        {L"ESI", &Context::ESI}, {L"EDI", &Context::EDI}, {L"EBP", &Context::EBP}, {L"ESP", &Context::ESP},
        {L"EIP", &Context::EIP}, {L"R8", &Context::R8},   {L"R9", &Context::R9},   {L"R10", &Context::R10},
        {L"R11", &Context::R11}, {L"R12", &Context::R12}, {L"R13", &Context::R13}, {L"R14", &Context::R14},
        {L"R15", &Context::R15}};
    Context c;
    std::uint64_t value = 0x7ff6a1b23c40ULL;
    for (auto const& reg : registers) c.*reg.second = value++;
    StringMap sections;
    internal::writeContextSections({{0x19e8, c}}, sections);
    StringMap keys;
    processSectionToMap(sections[L"Context.0x000019e8"], keys, {});
    EXPECT_EQ(keys.size(), 17u);
    ContextMap read;
    internal::readContextSections(sections, read);
    for (auto const& reg : registers) {
        EXPECT_EQ(keys[reg.first], string_traits::addrToString(c.*reg.second)) << reg.first;
        EXPECT_EQ(read[0x19e8].*reg.second, c.*reg.second) << reg.first;
    }
}

TEST(StackSections, RoundTripKeepsFramesSortedAndDropsDetails) {
    ProblemReportStorage written;
    // Address, slot, module, details, kind.
    written.getStackFramesMap()[5] = {
        {30, 3, L"", L"lost", L"", 0, 0}, {10, 1, L"a b.dll", L"lost", L"", 0, 3}, {20, 2, L"", L"lost", L"", 0, 2}};
    written.getStackMap()[5] = {{1, 2}, {3, 4}};
    written.getStackMap()[6] = {};
    ProblemReportStorage read;
    read.fromString(written.toString());
    EXPECT_EQ(written.getStackFramesMap()[5][0].stackAddress, 3u);  // the writer sorts a copy
    auto const& frames = read.getStackFramesMap()[5];
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0].stackAddress, 1u);
    EXPECT_EQ(frames[0].kind, 0u);  // unknown kinds are written as "-"
    EXPECT_EQ(frames[0].module, L"a b.dll");
    EXPECT_EQ(frames[0].detail1, L"");
    EXPECT_EQ(frames[1].kind, 2u);
    EXPECT_EQ(frames[2].kind, 0u);
    EXPECT_EQ(read.getStackMap()[5], (RawStack{{1, 2}, {3, 4}}));
    EXPECT_EQ(read.getStackMap().count(6), 0u);  // an empty raw stack isn't written
}

// A clean line's columns, and raw lines, which need a colon with text on
// both sides. A CR kept in the module column is the golden CR LF file's.
TEST(StackSections, LinesAreReadColumnByColumn) {
    struct {
        std::wstring line;
        std::uint32_t kind;
        std::uint64_t slot;
        std::uint64_t address;
        std::wstring module;
    } const cases[] = {
        {L"+", 2, 0, 0, L""},
        {L"x", 0, 0, 0, L""},
        {L"? | 0x1", 1, 0, 0, L""},
        {L"! | 0x1 | 0x2", 4, 1, 2, L""},
        {L"+ | 0x1 | 0x2 |  m | rest", 2, 1, 2, L" m"},
        {L"+ | 0x1\r | 0x2\r", 2, 1, 2, L""},
    };
    for (auto const& c : cases) {
        RawStackMap raw;
        CleanStackMap clean;
        internal::readStackSections({{L"Stack.clean.0x1", L"\n" + c.line + L"\n"}}, raw, clean);
        auto const& frames = clean[1];
        ASSERT_EQ(frames.size(), 1u) << std::string(c.line.begin(), c.line.end());
        EXPECT_EQ(frames[0].kind, c.kind);
        EXPECT_EQ(frames[0].stackAddress, c.slot);
        EXPECT_EQ(frames[0].address, c.address);
        EXPECT_EQ(frames[0].module, c.module);
    }
    RawStackMap raw;
    CleanStackMap clean;
    internal::readStackSections({{L"Stack.raw.0x1", L":0x1\n0x1:\n0x1\n 0x2 : 0x3 \r\n0x2: 0x4\n"}}, raw, clean);
    EXPECT_EQ(raw[1], (RawStack{{2, 4}}));
}

TEST(ModuleSections, PositionsAboveNineHundredNinetyNineGetFourDigits) {
    ProblemReportStorage report;
    report.getModuleInfo().resize(1001);
    std::wstring const text = report.toString();
    auto const m1000 = text.find(L"[Module1000]");
    ASSERT_NE(m1000, std::wstring::npos);
    EXPECT_LT(m1000, text.find(L"[Module101]"));  // sections are ordered as text
    ProblemReportStorage read;
    read.fromString(text);
    EXPECT_EQ(read.getModuleInfo().size(), 1001u);
}

// Only exactly 32 is 32-bit; "64" is read in the golden report.
TEST(ProblemSections, BitnessIsThirtyTwoOnlyForExactlyThirtyTwo) {
    for (auto const& [value, expected] : {std::pair{L"32", 1}, std::pair{L"16", 0}, std::pair{L"", -1}}) {
        ProcessDump d;
        internal::ProblemFacts facts;
        internal::readProcessDumpSection(std::wstring(L"Description: d\nProcessBitness: ") + value + L"\n", d, facts);
        EXPECT_EQ(facts.bitness, expected) << std::wstring(value).size();
    }
}

TEST(ProblemSections, UnknownBitnessIsWorkedOutFromModulePaths) {
    ProblemReportStorage report;
    EXPECT_EQ(report.getProcBitness(), -1);
    EXPECT_EQ(report.toString().find(L"ProcessBitness"), std::wstring::npos);
    ModuleInfo module;
    module.FullName = L"C:\\a\\bin\\x.dll";
    report.getModuleInfo().assign(3, module);
    EXPECT_EQ(report.getProcBitness(), -1);
    module.FullName = L"C:\\a\\bin64\\x.dll";
    report.getModuleInfo().push_back(module);
    EXPECT_EQ(report.getProcBitness(), 0);
    EXPECT_NE(report.toString().find(L"ProcessBitness: 64\n"), std::wstring::npos);
}

}  // namespace
