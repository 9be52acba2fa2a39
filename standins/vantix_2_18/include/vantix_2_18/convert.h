// Number parsing of the portability library.
#pragma once

#include <cstdint>

namespace VANTIX_2_18 {
namespace generic {
namespace convert {

struct radix_t {
    // `automatic` reads "0x"/"0X" as hexadecimal and everything else as decimal.
    enum base { automatic = 0, binary = 2, octal = 8, decimal = 10, hexadecimal = 16 };
};

// Reads an unsigned number from the first `length` characters of `text`.
// Reading stops at the first character that is not a digit of the radix; an
// empty text, or one without digits, gives 0. Digits beyond 64 bits wrap
// around. `strict` is accepted for interface compatibility and has no effect.
std::uint64_t str_to_uint64(wchar_t const* text, std::uint64_t length, radix_t::base radix, bool strict);

}  // namespace convert
}  // namespace generic
}  // namespace VANTIX_2_18
