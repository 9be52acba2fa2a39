// The value forms of report text (addresses, decimals, thread ids, GUIDs,
// escaped text), each table run through every section kind that reads or
// writes that form. Characters outside ASCII whose low byte is a digit or a
// letter (U+0131, U+0161) must never read as hexadecimal digits.
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/context_sections.h"
#include "minidump_problem_report_storage/hex_text.h"
#include "minidump_problem_report_storage/module_sections.h"
#include "minidump_problem_report_storage/problem_sections.h"
#include "minidump_problem_report_storage/stack_sections.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <optional>
#include <sstream>
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
    {L"zz", 0, 0},
    {L"0x1ffffffffffffffff", ~0ULL, ~0ULL},
    {L"\x0131", 0, 0},
    {L"0x\x0161", 0, 0},
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

// Decimals (process and thread ids, the assertion's line) are strict; the
// sections keep their low 32 bits.
struct DecimalCase {
    std::wstring text;
    std::optional<std::int64_t> value;  // none: boost::bad_lexical_cast
};

TEST(ValueForms, DecimalsReadAlikeInEveryProblemSection) {
    DecimalCase const cases[] = {
        {L"4120", 4120},
        {L"+12", 12},
        {L"-1", -1},
        {L"4294967297", 4294967297LL},
        {L"-9223372036854775808", INT64_MIN},
        {L"9223372036854775808", std::nullopt},
        {L"12a", std::nullopt},
        {L"0x10", std::nullopt},
        {L"-", std::nullopt},
        {L"1\x0131", std::nullopt},
        {L"\x0661", std::nullopt},  // an Arabic-Indic digit is no decimal digit here
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.text);
        std::wstring const ids = L"CrashedPID: " + c.text + L"\nCrashedTID: " + c.text + L"\n";
        Exception exception;
        Assertion assertion;
        ProcessDump dump;
        ProblemFacts facts[3];
        if (!c.value) {
            EXPECT_THROW(string_traits::stringToNumber(c.text), boost::bad_lexical_cast);
            EXPECT_THROW(internal::readExceptionSection(ids, exception, facts[0]), boost::bad_lexical_cast);
            EXPECT_THROW(internal::readAssertionSection(L"Line: " + c.text + L"\n", assertion, facts[1]),
                         boost::bad_lexical_cast);
            EXPECT_THROW(internal::readProcessDumpSection(ids, dump, facts[2]), boost::bad_lexical_cast);
            continue;
        }
        auto const low = static_cast<std::uint32_t>(*c.value);
        EXPECT_EQ(string_traits::stringToNumber(c.text), *c.value);
        internal::readExceptionSection(ids, exception, facts[0]);
        internal::readAssertionSection(ids + L"Line: " + c.text + L"\n", assertion, facts[1]);
        internal::readProcessDumpSection(ids, dump, facts[2]);
        EXPECT_EQ(assertion.line, low);
        for (auto const& read : facts) {
            EXPECT_EQ(read.crashedPid, low);
            EXPECT_EQ(read.crashedTid, low);
        }
    }
    for (std::wstring blank : {L"", L" 12", L"12 "}) {
        EXPECT_THROW(string_traits::stringToNumber(blank), boost::bad_lexical_cast) << blank;
    }
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
        {L"00000000-0000-0000-0000-000000000000", Guid{}},
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

// Every field of escaped text set to `value`, as its section writes it: one
// line per field.
std::vector<std::wstring> everyTextFieldWritten(std::wstring const& value) {
    Exception e{0, value, 0, value};
    Assertion a{value, value, 0};
    ProcessDump d{value, value, value};
    ModuleInfo m;
    m.FullName = m.SymbolName = value;
    StringMap modules;
    internal::writeModuleSections({m}, modules);
    std::wistringstream text(internal::exceptionSectionText(e, {}) + internal::assertionSectionText(a, {}) +
                             internal::processDumpSectionText(d, {}) + modules[L"Module000"]);
    std::vector<std::wstring> values;
    for (std::wstring line; std::getline(text, line);) {
        auto const key = line.substr(0, line.find(L": "));
        for (auto field : {L"Description", L"Module", L"Expression", L"File", L"Executable", L"Command line",
                           L"FullName", L"SymbolName"}) {
            if (key == field) values.push_back(line.substr(key.size() + 2));
        }
    }
    return values;
}

// Every field of escaped text, read from a section whose keys all hold `text`.
std::vector<std::wstring> everyTextFieldRead(std::wstring const& text) {
    auto const keyText = [&text](std::initializer_list<wchar_t const*> keys) {
        std::wstring out;
        for (auto key : keys) out += std::wstring(key) + L": " + text + L"\n";
        return out;
    };
    Exception e;
    Assertion a;
    ProcessDump d;
    ProblemFacts facts;
    internal::readExceptionSection(keyText({L"Description", L"Module"}), e, facts);
    internal::readAssertionSection(keyText({L"Expression", L"File"}), a, facts);
    internal::readProcessDumpSection(keyText({L"Executable", L"Command line", L"Description"}), d, facts);
    ModuleInfo const m = readModule(keyText({L"FullName", L"SymbolName"}));
    return {e.description, e.module,      a.expression, a.file,      d.executable,
            d.commandLine, d.description, m.FullName,   m.SymbolName};
}

// Line ends, blanks and lone ampersands are escaped; decoding is one pass
// that doesn't look at what it wrote, so not every escaped text is written.
TEST(ValueForms, EscapedTextIsWrittenAndReadAlikeInEveryField) {
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
        {L"a b\nc", L"a&nbsp;b<br>c", both},
        {L"<b>", L"<b>", both},
        {L"&", L"&", reads},
        {L"C:\\My & Co\\\x0161.dll", L"C:\\My&nbsp;&amp;&nbsp;Co\\\x0161.dll", both},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.escaped);
        if (c.way != reads) {
            EXPECT_EQ(string_traits::encodeString(c.plain), c.escaped);
            EXPECT_EQ(everyTextFieldWritten(c.plain), std::vector<std::wstring>(9, c.escaped));
        }
        if (c.way != writes) {
            EXPECT_EQ(string_traits::decodeString(c.escaped), c.plain);
            EXPECT_EQ(everyTextFieldRead(c.escaped), std::vector<std::wstring>(9, c.plain));
        }
    }
}

}  // namespace
