// Reading report text: finding section heads, and "Key: value" lines. Key
// text as written, sorted, is in the golden report; read from CR LF text in
// its copy with CR LF line ends (whole_report_test.cpp); a head inside free
// text in the JSON round trip (report_json_test.cpp).
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/section_text.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using Sections = std::vector<std::pair<std::wstring, std::wstring>>;

// Every section nextSection gives, in the order it gives them.
Sections scan(std::wstring const& text) {
    Sections found;
    std::wstring name;
    std::wstring body;
    for (auto at = text.cbegin(); at != text.cend();) {
        at = norvane_1::internal::nextSection(text, at, name, body);
        if (!name.empty()) found.emplace_back(name, body);
    }
    return found;
}

TEST(SectionReader, FindsHeadsThatStandOnLinesOfTheirOwn) {
    struct {
        char const* what;
        std::wstring text;
        Sections expected;
    } const cases[] = {
        {"head behind head", L"\n[A]\n[B]\nx", {{L"A", L""}, {L"B", L"x"}}},
        {"blank lines between", L"\n[A]\n\na: 1\n\n\n[B]\nb\n\n", {{L"A", L"a: 1"}, {L"B", L"b"}}},
        {"blanks inside brackets", L"\n[ A ]\nx", {{L"A", L"x"}}},
        {"dots and blanks in names",
         L"\n[Context.0x000019e8]\nx\n[Device Info]\ny",
         {{L"Context.0x000019e8", L"x"}, {L"Device Info", L"y"}}},
        {"hyphen is no name", L"\n[A]\nx\n[A-B]\ny", {{L"A", L"x\n[A-B]\ny"}}},
        {"blank behind bracket", L"\n[A]\nx\n[B] \ny", {{L"A", L"x\n[B] \ny"}}},
        {"head at the very end", L"\n[A]\nx\n[B]", {{L"A", L"x\n[B]"}}},
        {"text before first head", L"junk\n[A]\nx", {{L"A", L"x"}}},
        {"no line break in front", L"[A]\nx", {}},
        {"CR LF", L"\r\n[A]\r\nx\r\n\r\n[B]\r\ny\r\n", {{L"A", L"x"}, {L"B", L"y"}}},
        {"lone CR", L"\r[A]\rx\r[B]\ry", {{L"A", L"x"}, {L"B", L"y"}}},
        {"blanks stay", L"\n[A]\n  x  \n", {{L"A", L"  x  "}}},
        {"names outside ASCII",
         L"\n[\x0416\x0443\x0440\x043d\x0430\x043b \x65e5\x5fd7]\nx",
         {{L"\x0416\x0443\x0440\x043d\x0430\x043b \x65e5\x5fd7", L"x"}}},
    };
    for (auto const& c : cases) EXPECT_EQ(scan(c.text), c.expected) << c.what;
}

TEST(KeyText, ReadsValuesByTheRuleOfTheKeyList) {
    using norvane_1::StringMap;
    struct {
        char const* what;
        std::wstring text;
        std::vector<std::wstring> keys;
        StringMap expected;
    } const cases[] = {
        {"no blank", L"A:1", {}, {{L"A", L"1"}}},
        {"empty value then key", L"A:\nB: 2", {}, {{L"A", L""}, {L"B", L"2"}}},
        {"continuation", L"A: 1\n more\nB: 2", {}, {{L"A", L"1\n more"}, {L"B", L"2"}}},
        {"empty line trimmed", L"A: 1\n\nB: 2", {}, {{L"A", L"1"}, {L"B", L"2"}}},
        {"junk line lost", L"A: 1\njunk\nB: 2", {}, {{L"A", L"1"}, {L"B", L"2"}}},
        {"last value wins", L"A: 1\nA: 2", {}, {{L"A", L"2"}}},
        {"key with blanks", L"Command line: x\nKey  : y", {}, {{L"Command line", L"x"}, {L"Key", L"y"}}},
        {"key stops at first colon", L"Path: C:\\x", {}, {{L"Path", L"C:\\x"}}},
        {"blank in front of key", L" A: 1", {}, {}},
        {"value white space", L"A: \t 1 \t", {}, {{L"A", L"1"}}},
        {"joined lines", L"A: 1\n2\nB: 3", {L"A", L"B"}, {{L"A", L"12"}, {L"B", L"3"}}},
        {"empty line ends value", L"A: 1\n\n2: x", {L"A", L"B"}, {{L"A", L"1"}, {L"2", L"x"}}},
        {"unlisted key is joined", L"A: 1\nC: 2", {L"A"}, {{L"A", L"1C: 2"}}},
        {"nothing", L"", {}, {}},
    };
    for (auto const& c : cases) {
        StringMap read;
        norvane_1::processSectionToMap(c.text, read, c.keys);
        EXPECT_EQ(read, c.expected) << c.what;
    }
}

}  // namespace
