#include "hex_text.h"

#include <array>

namespace norvane_1 {
namespace internal {
namespace {

constexpr wchar_t kDigits[] = L"0123456789abcdef";

constexpr std::array<std::uint8_t, 256> makeDigitValues() {
    std::array<std::uint8_t, 256> table{};
    for (int c = '0'; c <= '9'; ++c) table[c] = static_cast<std::uint8_t>(c - '0');
    for (int c = 'a'; c <= 'f'; ++c) table[c] = static_cast<std::uint8_t>(c - 'a' + 10);
    for (int c = 'A'; c <= 'F'; ++c) table[c] = static_cast<std::uint8_t>(c - 'A' + 10);
    return table;
}

constexpr std::array<std::uint8_t, 256> kDigitValues = makeDigitValues();

template <typename Number>
Number parseHex(std::wstring const& text) {
    std::size_t i = 0;
    if (text.size() >= 2 && text[0] == L'0' && (text[1] == L'x' || text[1] == L'X')) i = 2;
    Number value = 0;
    for (; i < text.size(); ++i) {
        // A character beyond the table is no digit either: it counts as 0.
        auto const c = static_cast<std::uint32_t>(text[i]);
        auto const digit = c < kDigitValues.size() ? kDigitValues[c] : std::uint8_t{0};
        value = static_cast<Number>((value << 4) + digit);
    }
    return value;
}

template <int Digits, typename Number>
void appendHex(std::wstring& out, Number value) {
    wchar_t buffer[2 + Digits];
    buffer[0] = L'0';
    buffer[1] = L'x';
    for (int i = 0; i < Digits; ++i) {
        buffer[2 + i] = kDigits[(value >> (4 * (Digits - 1 - i))) & 0xF];
    }
    out.append(buffer, 2 + Digits);
}

}  // namespace

void appendAddress(std::wstring& out, std::uint64_t value) { appendHex<16>(out, value); }

std::wstring threadIdToString(std::uint32_t threadId) {
    std::wstring out;
    appendHex<8>(out, threadId);
    return out;
}

std::uint32_t parseHex32(std::wstring const& text) { return parseHex<std::uint32_t>(text); }
std::uint64_t parseHex64(std::wstring const& text) { return parseHex<std::uint64_t>(text); }

}  // namespace internal
}  // namespace norvane_1
