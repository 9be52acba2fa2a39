// Key text: reading "Key: value" lines. Key text as written, sorted, is in
// the golden report; read from CR LF text in its copy with CR LF line ends
// (whole_report_test.cpp).
#include <norvane_1/string_traits.h>

#include <gtest/gtest.h>

namespace {

using norvane_1::StringMap;

StringMap read(std::wstring const& text, std::vector<std::wstring> const& keys = {}) {
    StringMap out;
    norvane_1::processSectionToMap(text, out, keys);
    return out;
}

struct ReadCase {
    char const* what;
    std::wstring text;
    std::vector<std::wstring> keys;
    StringMap expected;
};

TEST(KeyText, ReadsValuesByTheRuleOfTheKeyList) {
    ReadCase const cases[] = {
        {"two lines", L"A: 1\nB: 2", {}, {{L"A", L"1"}, {L"B", L"2"}}},
        {"no blank", L"A:1", {}, {{L"A", L"1"}}},
        {"empty value", L"A:", {}, {{L"A", L""}}},
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
    for (auto const& c : cases) EXPECT_EQ(read(c.text, c.keys), c.expected) << c.what;
}

}  // namespace
