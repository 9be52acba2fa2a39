#include "vantix_2_18/utf.h"

#include <cstdint>
#include <type_traits>

namespace VANTIX_2_18 {
namespace utf {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

void appendUtf8(std::string& out, char32_t c) {
    if (c > 0x10FFFF || isSurrogate(c)) c = kReplacement;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

void appendWide(std::wstring& out, char32_t c) {
    if (c > 0x10FFFF || isSurrogate(c)) c = kReplacement;
    if (kWideIsUtf16 && c >= 0x10000) {
        c -= 0x10000;
        out += static_cast<wchar_t>(0xD800 + (c >> 10));
        out += static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
    } else {
        out += static_cast<wchar_t>(c);
    }
}

// Decodes one code point of UTF-8 at `i`, advancing `i` past it. A malformed
// or overlong sequence consumes one byte and gives U+FFFD.
char32_t decodeUtf8(std::string const& s, std::size_t& i) {
    auto const lead = static_cast<unsigned char>(s[i++]);
    if (lead < 0x80) return lead;
    int extra = 0;
    char32_t c = 0;
    char32_t minimum = 0;
    if ((lead & 0xE0) == 0xC0) {
        extra = 1;
        c = lead & 0x1F;
        minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2;
        c = lead & 0x0F;
        minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3;
        c = lead & 0x07;
        minimum = 0x10000;
    } else
        return kReplacement;
    std::size_t const start = i;
    for (int k = 0; k < extra; ++k) {
        if (i >= s.size() || (static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) {
            i = start;
            return kReplacement;
        }
        c = (c << 6) | (static_cast<unsigned char>(s[i++]) & 0x3F);
    }
    if (c < minimum || c > 0x10FFFF || isSurrogate(c)) {
        i = start;
        return kReplacement;
    }
    return c;
}

// Decodes one code point of the wide text at `i`, joining surrogate pairs
// where wchar_t is UTF-16.
char32_t decodeWide(std::wstring const& s, std::size_t& i) {
    auto const unit = static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(s[i++]));
    if (!kWideIsUtf16 || unit < 0xD800 || unit > 0xDBFF) return unit;
    if (i < s.size()) {
        auto const low = static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(s[i]));
        if (low >= 0xDC00 && low <= 0xDFFF) {
            ++i;
            return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        }
    }
    return kReplacement;
}

}  // namespace

std::string to_utf8(std::wstring const& text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) appendUtf8(out, decodeWide(text, i));
    return out;
}

std::wstring from_utf8(std::string const& text) {
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) appendWide(out, decodeUtf8(text, i));
    return out;
}

}  // namespace utf
}  // namespace VANTIX_2_18
