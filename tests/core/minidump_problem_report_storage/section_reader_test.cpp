// Finding sections in report text.
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

struct ScanCase {
    char const* what;
    std::wstring text;
    Sections expected;
};

TEST(SectionReader, FindsHeadsThatStandOnLinesOfTheirOwn) {
    ScanCase const cases[] = {
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
        {"bracket line in free text cuts",
         L"\n[Log]\nline\n[Something]\nmore",
         {{L"Log", L"line"}, {L"Something", L"more"}}},
    };
    for (auto const& c : cases) EXPECT_EQ(scan(c.text), c.expected) << c.what;
}

}  // namespace
