#include "vantix_2_18/convert.h"

namespace VANTIX_2_18 {
namespace generic {
namespace convert {
namespace {

int digitValue(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'z') return c - L'a' + 10;
    if (c >= L'A' && c <= L'Z') return c - L'A' + 10;
    return 99;
}

}  // namespace

std::uint64_t str_to_uint64(wchar_t const* text, std::uint64_t length, radix_t::base radix, bool /*strict*/) {
    if (text == nullptr) return 0;
    std::uint64_t i = 0;
    unsigned base = static_cast<unsigned>(radix);
    bool const hexPrefix = length >= 2 && text[0] == L'0' && (text[1] == L'x' || text[1] == L'X');
    if (base == radix_t::automatic) base = hexPrefix ? 16 : 10;
    if (base == 16 && hexPrefix) i = 2;
    std::uint64_t value = 0;
    for (; i < length; ++i) {
        int const digit = digitValue(text[i]);
        if (digit >= static_cast<int>(base)) break;
        value = value * base + static_cast<unsigned>(digit);
    }
    return value;
}

}  // namespace convert
}  // namespace generic
}  // namespace VANTIX_2_18
