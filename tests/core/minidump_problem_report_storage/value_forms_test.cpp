// The value forms of report text (addresses, decimals, thread ids, GUIDs,
// escaped text), run through every section kind that reads or writes that
// form. Characters outside ASCII whose low byte is a digit or a letter
// (U+0131, U+0161) must never read as hexadecimal digits.
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/context_sections.h"
#include "minidump_problem_report_storage/hex_text.h"
#include "minidump_problem_report_storage/module_sections.h"
#include "minidump_problem_report_storage/problem_sections.h"
#include "minidump_problem_report_storage/stack_sections.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

using namespace norvane_1;
using internal::ProblemFacts;

ModuleInfo readModule(std::wstring const& sectionText) {
    auto const modules = internal::readModuleSections({{L"Module000", sectionText}});
    return modules.empty() ? ModuleInfo() : modules[0];
}

// Key text reads an address as "0x" and hexadecimal digits, or else as
// decimal digits, up to the first other character. Tables (contexts, stacks)
// read hexadecimal digits after an optional "0x" and count any other
// character as the digit 0; bits beyond 64 are lost to both.
struct AddressCase {
    std::wstring text;
    std::uint64_t byKey;
    std::uint64_t byTable;
};

AddressCase const kAddresses[] = {
    {L"0x00007ff6a1b23c40", 0x7ff6a1b23c40ULL, 0x7ff6a1b23c40ULL},
    {L"0xFFFFFFFFFFFFFFFF", ~0ULL, ~0ULL},
    {L"0X10", 0x10, 0x10},
    {L"0x", 0, 0},
    {L"1234", 1234, 0x1234},
    {L"00007FF6A1B23C40", 7, 0x7ff6a1b23c40ULL},
    {L"0x1z", 1, 0x10},
    {L"0x1ffffffffffffffff", ~0ULL, ~0ULL},
    {L"\x0131", 0, 0},
    {L"0x1\x0131", 1, 0x10},
};

TEST(ValueForms, AddressesAndThreadIdsReadAlikeInEverySection) {
    for (auto const& c : kAddresses) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(string_traits::stringToAddr(c.text), c.byKey);
        EXPECT_EQ(internal::parseHex64(c.text), c.byTable);

        Exception exception;
        ProblemFacts facts;
        internal::readExceptionSection(L"Address: " + c.text + L"\nCode: " + c.text + L"\n", exception, facts);
        EXPECT_EQ(exception.address, c.byKey);
        EXPECT_EQ(exception.code, c.byKey);
        std::wstring moduleText;
        for (auto key : {L"Base", L"Begin", L"End", L"Size", L"Timestamp", L"Age"}) {
            moduleText += std::wstring(key) + L": " + c.text + L"\n";
        }
        ModuleInfo const module = readModule(moduleText);
        for (auto field : {module.Base, module.Begin, module.End, module.Size, module.Timestamp, module.Age}) {
            EXPECT_EQ(field, c.byKey);
        }

        // Thread ids stand in section names, in hexadecimal, and read like
        // tables, kept to 32 bits.
        auto const thread = static_cast<std::uint32_t>(c.byTable);
        ContextMap contexts;
        internal::readContextSections({{L"Context." + c.text, L"EAX: " + c.text + L"\nR15: " + c.text + L"\n"}},
                                      contexts);
        EXPECT_EQ(contexts.count(thread), 1u);
        EXPECT_EQ(contexts[thread].EAX, c.byTable);
        EXPECT_EQ(contexts[thread].R15, c.byTable);
        for (std::wstring rawName : {L"Stack.", L"Stack.raw."}) {
            RawStackMap raw;
            CleanStackMap clean;
            internal::readStackSections({{rawName + c.text, L"0x1: " + c.text + L"\n"},
                                         {L"Stack.clean." + c.text, L"+ | " + c.text + L" | " + c.text + L" | m\n"}},
                                        raw, clean);
            EXPECT_EQ(raw[thread], (RawStack{{1, c.byTable}})) << rawName;
            ASSERT_EQ(clean[thread].size(), 1u);
            EXPECT_EQ(clean[thread][0].stackAddress, c.byTable);
            EXPECT_EQ(clean[thread][0].address, c.byTable);
        }
    }
}

// Decimals (process and thread ids, the assertion's line) are strict.
TEST(ValueForms, DecimalsAreStrict) {
    struct {
        std::wstring text;
        std::optional<std::int64_t> value;  // none: boost::bad_lexical_cast
    } const cases[] = {
        {L"4120", 4120},
        {L"+12", 12},
        {L"-1", -1},
        {L"-9223372036854775808", INT64_MIN},
        {L"9223372036854775808", std::nullopt},
        {L"0x10", std::nullopt},
        {L"-", std::nullopt},
        {L"", std::nullopt},
        {L" 12", std::nullopt},
        {L"12 ", std::nullopt},
        {L"1\x0131", std::nullopt},
        {L"\x0661", std::nullopt},  // an Arabic-Indic digit is no decimal digit here
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.text);
        if (c.value) {
            EXPECT_EQ(string_traits::stringToNumber(c.text), *c.value);
        } else {
            EXPECT_THROW(string_traits::stringToNumber(c.text), boost::bad_lexical_cast);
        }
    }
}

// Every problem section reads its decimals so, and keeps their low 32 bits.
TEST(ValueForms, ProblemSectionsReadDecimalsAlike) {
    std::wstring const ids = L"CrashedPID: 4294967297\nCrashedTID: -2\n";
    Exception exception;
    Assertion assertion;
    ProcessDump dump;
    ProblemFacts facts[3];
    internal::readExceptionSection(ids, exception, facts[0]);
    internal::readAssertionSection(ids + L"Line: 4294967299\n", assertion, facts[1]);
    internal::readProcessDumpSection(ids, dump, facts[2]);
    EXPECT_EQ(assertion.line, 3u);
    for (auto const& read : facts) {
        EXPECT_EQ(read.crashedPid, 1u);
        EXPECT_EQ(read.crashedTid, 0xFFFFFFFEu);
    }
    EXPECT_THROW(internal::readExceptionSection(L"CrashedPID: 12a\n", exception, facts[0]), boost::bad_lexical_cast);
    EXPECT_THROW(internal::readAssertionSection(L"Line: 12a\n", assertion, facts[1]), boost::bad_lexical_cast);
    EXPECT_THROW(internal::readProcessDumpSection(L"CrashedTID: 12a\n", dump, facts[2]), boost::bad_lexical_cast);
}

struct GuidCase {
    std::wstring text;
    Guid guid;
};

TEST(ValueForms, GuidsReadAlikeAsTextAndInModuleSections) {
    Guid const sample{0x3f2504e0, 0x4f89, 0x11d3, {0x9a, 0x0c, 0x03, 0x05, 0xe8, 0x2c, 0x33, 0x01}};
    Guid lastByteLost = sample;
    lastByteLost.Data4[7] = 0;
    GuidCase const cases[] = {
        {L"3f2504e0-4f89-11d3-9a0c-0305e82c3301", sample},
        {L"3F2504E0-4F89-11D3-9A0C-0305E82C3301", sample},
        {L"{3f2504e0-4f89-11d3-9a0c-0305e82c3301}", Guid{}},
        {L"3f2504e0-4f89-11d3-9a0c-0305e82c330", Guid{}},
        {L"", Guid{}},
        {L"3f2504e0-zzzz-11d3-9a0c-0305e82c3301", Guid{0x3f2504e0, 0, 0, {}}},
        {L"3f2504e0-4f89-11d3-9a0c-0305e82c33\x0161\x0131", lastByteLost},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.text);
        // Compared as written, which shows every field.
        EXPECT_EQ(internal::guidToString(internal::stringToGuid(c.text)), internal::guidToString(c.guid));
        EXPECT_EQ(internal::guidToString(readModule(L"Guid: " + c.text + L"\n").Guid), internal::guidToString(c.guid));
    }
}

// Line ends, blanks and lone ampersands are escaped; decoding is one pass
// that doesn't look at what it wrote, so not every escaped text is written.
TEST(ValueForms, EscapedTextIsWrittenAndRead) {
    enum Way { both, writes, reads };
    struct {
        std::wstring plain;
        std::wstring escaped;
        Way way;
    } const cases[] = {
        {L"a b", L"a&nbsp;b", both},
        {L"x\r\ny", L"x<br>y", writes},
        {L"x\ry", L"x<br>y", writes},
        {L"x\ny", L"x<br>y", both},
        {L"x\n\ny", L"x<br><br>y", both},
        {L"&", L"&amp;", both},
        {L"&amp;", L"&amp;", writes},
        {L"&nbsp;", L"&amp;nbsp;", both},
        {L"a\tb<c>", L"a\tb<c>", both},
        {L"", L"", writes},
        {L"\x0416\x4E2D \x00E9\x0131", L"\x0416\x4E2D&nbsp;\x00E9\x0131", both},
        {L"&", L"&", reads},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.escaped);
        if (c.way != reads) {
            EXPECT_EQ(string_traits::encodeString(c.plain), c.escaped);
        }
        if (c.way != writes) {
            EXPECT_EQ(string_traits::decodeString(c.escaped), c.plain);
        }
    }
}

// Every field of escaped text is escaped as its section writes it and
// unescaped as it reads it, text outside ASCII at both ends kept.
TEST(ValueForms, EveryTextFieldIsEscapedBothWays) {
    std::wstring const plain = L"\x0416 & C:\\x\n\x0131";
    Exception e{0, plain, 0, plain};
    Assertion a{plain, plain, 0};
    ProcessDump d{plain, plain, plain};
    ModuleInfo m;
    m.FullName = m.SymbolName = plain;
    StringMap sections;
    internal::writeModuleSections({m}, sections);
    sections[L"Exception"] = internal::exceptionSectionText(e, {});
    sections[L"Assertion"] = internal::assertionSectionText(a, {});
    sections[L"ProcessDump"] = internal::processDumpSectionText(d, {});
    std::wstring const line = L": \x0416&nbsp;&amp;&nbsp;C:\\x<br>\x0131\n";
    std::size_t count = 0;
    for (auto const& section : sections) {
        for (auto at = section.second.find(line); at != std::wstring::npos; at = section.second.find(line, at + 1)) {
            ++count;
        }
    }
    EXPECT_EQ(count, 9u);
    ProblemFacts facts;
    internal::readExceptionSection(sections[L"Exception"], e = {}, facts);
    internal::readAssertionSection(sections[L"Assertion"], a = {}, facts);
    internal::readProcessDumpSection(sections[L"ProcessDump"], d = {}, facts);
    m = readModule(sections[L"Module000"]);
    EXPECT_EQ((std::vector<std::wstring>{e.description, e.module, a.expression, a.file, d.executable, d.commandLine,
                                         d.description, m.FullName, m.SymbolName}),
              std::vector<std::wstring>(9, plain));
}

}  // namespace
