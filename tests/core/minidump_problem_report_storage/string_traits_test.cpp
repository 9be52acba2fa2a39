// Value forms of report text: escaping, addresses, decimals, hex readers.
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/hex_text.h"
#include "minidump_problem_report_storage/regex_text.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

namespace {

using namespace norvane_1;

struct EscapeCase {
    std::wstring plain;
    std::wstring escaped;
};

TEST(Escaping, EncodesLineEndsBlanksAndLoneAmpersands) {
    EscapeCase const cases[] = {
        {L"a b", L"a&nbsp;b"},
        {L"x\r\ny", L"x<br>y"},
        {L"x\ry", L"x<br>y"},
        {L"x\ny", L"x<br>y"},
        {L"x\n\ny", L"x<br><br>y"},
        {L"&", L"&amp;"},
        {L"&amp;", L"&amp;"},
        {L"&nbsp;", L"&amp;nbsp;"},
        {L"a\tb<c>", L"a\tb<c>"},
        {L"", L""},
        {L"\x0416\x4E2D \x00E9", L"\x0416\x4E2D&nbsp;\x00E9"},
    };
    for (auto const& c : cases) EXPECT_EQ(string_traits::encodeString(c.plain), c.escaped) << c.escaped;
}

TEST(Escaping, DecodesInOnePass) {
    EscapeCase const cases[] = {
        {L"a b\nc", L"a&nbsp;b<br>c"},
        {L"&nbsp;", L"&amp;nbsp;"},  // the pass doesn't look at what it wrote
        {L"&", L"&amp;"},
        {L"<b>", L"<b>"},
        {L"&", L"&"},
    };
    for (auto const& c : cases) EXPECT_EQ(string_traits::decodeString(c.escaped), c.plain) << c.escaped;
}

TEST(Escaping, RoundTripLosesOnlyWhatTheFormatCannotTell) {
    EXPECT_EQ(string_traits::decodeString(string_traits::encodeString(L"a\r\nb\rc")), L"a\nb\nc");
    EXPECT_EQ(string_traits::decodeString(string_traits::encodeString(L"x<br>y")), L"x\ny");
    EXPECT_EQ(string_traits::decodeString(string_traits::encodeString(L"p&amp;q")), L"p&q");
    std::wstring const ordinary = L"C:\\Program Files\\My & Co\\tool.dll";
    EXPECT_EQ(string_traits::decodeString(string_traits::encodeString(ordinary)), ordinary);
}

TEST(Escaping, BadExpressionGivesEmptyText) {
    EXPECT_EQ(internal::replaceAllByRegex(L"text", L"(unclosed", L"x"), L"");
}

TEST(Numbers, AddressFormHasSixteenLowerCaseDigits) {
    EXPECT_EQ(string_traits::addrToString(0), L"0x0000000000000000");
    EXPECT_EQ(string_traits::addrToString(0x7ff6a1b23c40ULL), L"0x00007ff6a1b23c40");
    EXPECT_EQ(string_traits::addrToString(~0ULL), L"0xffffffffffffffff");
    EXPECT_EQ(internal::threadIdToString(0x19e8), L"0x000019e8");
    EXPECT_EQ(internal::threadIdToString(0xffffffffu), L"0xffffffff");
}

TEST(Numbers, AddressTextReadsBack) {
    EXPECT_EQ(string_traits::stringToAddr(L"0x00007ff6a1b23c40"), 0x7ff6a1b23c40ULL);
    EXPECT_EQ(string_traits::stringToAddr(L"0xFFFFFFFFFFFFFFFF"), ~0ULL);
    EXPECT_EQ(string_traits::stringToAddr(L""), 0u);
    EXPECT_EQ(string_traits::stringToAddr(L"0x"), 0u);
    EXPECT_EQ(string_traits::stringToAddr(L"1234"), 1234u);
}

TEST(Numbers, DecimalsAreStrict) {
    EXPECT_EQ(string_traits::numberToString(-1), L"-1");
    EXPECT_EQ(string_traits::numberToString(4120), L"4120");
    EXPECT_EQ(string_traits::stringToNumber(L"+12"), 12);
    EXPECT_EQ(string_traits::stringToNumber(L"-9223372036854775808"), INT64_MIN);
    for (std::wstring bad : {L"", L"12a", L" 12", L"12 ", L"0x10", L"9223372036854775808", L"-"}) {
        EXPECT_THROW(string_traits::stringToNumber(bad), boost::bad_lexical_cast) << bad;
    }
}

struct HexCase {
    std::wstring text;
    std::uint64_t value;
};

TEST(Numbers, HexReadersNeverFail) {
    HexCase const cases[] = {
        {L"0x00007ff6a1b23c40", 0x7ff6a1b23c40ULL},
        {L"00007FF6A1B23C40", 0x7ff6a1b23c40ULL},
        {L"7ff6a1b23c40", 0x7ff6a1b23c40ULL},
        {L"0X10", 0x10},
        {L"zz", 0},
        {L"0x", 0},
        {L"", 0},
        {L"1z", 0x10},                       // a non-digit counts as 0
        {L"0x1ffffffffffffffff", ~0ULL},     // bits beyond 64 are lost
        {std::wstring(1, wchar_t(0x131)), 0},  // no digit, though its low byte is "1"
    };
    for (auto const& c : cases) EXPECT_EQ(internal::parseHex64(c.text), c.value) << c.text;
    EXPECT_EQ(internal::parseHex32(L"0x1a2b3c4d5"), 0xa2b3c4d5u);
}

TEST(LineEnds, TrimLineEndsKeepsBlanks) {
    EXPECT_EQ(internal::trimLineEnds(L"\r\n a \n\r"), L" a ");
    EXPECT_EQ(internal::trimLineEnds(L"\n\r\n"), L"");
    EXPECT_EQ(internal::trimLineEnds(L"a\nb"), L"a\nb");
}

}  // namespace
