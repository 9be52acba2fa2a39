// Decoding the x86-64 call instruction that ends right in front of an
// address. Portable code only.
//
// A return address is the address behind a call. Only the bytes in front of
// it are known, so each length a call can have is tried: the call is there
// when the bytes at that distance decode as a call of exactly that length.
//
//   E8 rel32                      5 bytes; the target must be code too
//   [REX] FF /2 ModRM ...         2 to 8 bytes, by the ModRM form:
//     mod 11                      register               FF D0+r
//     mod 00, rm 101              [rip+disp32]           FF 15 d32
//     mod 00, rm 100, base 101    [index*s+disp32]       FF 14 x5 d32
//     mod 00, rm 100              [base+index*s]         FF 14 sib
//     mod 00                      [reg]                  FF 10+r
//     mod 01                      [reg+disp8]            FF 50+r d8   (SIB: FF 54 sib d8)
//     mod 10                      [reg+disp32]           FF 90+r d32  (SIB: FF 94 sib d32)
// A far call (FF /3) never appears in 64-bit code that a compiler makes.
#pragma once

#include <cstdint>
#include <cstring>

namespace bt {

// The longest call: REX, FF, ModRM, SIB and a 32-bit displacement.
constexpr int kLongestCall = 8;

namespace detail {

constexpr unsigned char kCallRelative = 0xE8;
constexpr unsigned char kGroup5 = 0xFF;
constexpr int kCallRelativeLength = 5;

inline bool isRex(unsigned char byte) { return (byte & 0xF0) == 0x40; }

// The length of FF /2 from its opcode byte on; 0 when the ModRM byte is not
// that of a near indirect call.
inline int indirectCallLength(unsigned char const* opcode) {
    unsigned char const modrm = opcode[1];
    int const mod = modrm >> 6;
    int const reg = (modrm >> 3) & 7;
    int const rm = modrm & 7;
    if (reg != 2) return 0;
    if (mod == 3) return 2;
    int length = 2;
    if (rm == 4) {
        ++length;                                           // SIB
        if (mod == 0 && (opcode[2] & 7) == 5) length += 4;  // no base: disp32
    }
    if (mod == 0 && rm == 5) length += 4;  // rip-relative
    if (mod == 1) length += 1;
    if (mod == 2) length += 4;
    return length;
}

}  // namespace detail

// Whether a call instruction ends at `end`, the copy of the byte at address
// `address`; kLongestCall bytes in front of `end` and the byte at it must
// be readable.
// `isCode(target)` tells whether a relative call's target is code.
template <typename IsCode>
bool callEndsAt(std::uint64_t address, unsigned char const* end, IsCode const& isCode) {
    if (end[-detail::kCallRelativeLength] == detail::kCallRelative) {
        std::int32_t displacement;
        std::memcpy(&displacement, end - 4, sizeof displacement);
        if (isCode(address + static_cast<std::uint64_t>(static_cast<std::int64_t>(displacement)))) return true;
    }
    for (int length = 2; length <= kLongestCall; ++length) {
        unsigned char const* start = end - length;
        for (int prefix = 0; prefix <= 1; ++prefix) {
            if (prefix == 1 && !detail::isRex(start[0])) continue;
            unsigned char const* opcode = start + prefix;
            if (opcode[0] == detail::kGroup5 && prefix + detail::indirectCallLength(opcode) == length) return true;
        }
    }
    return false;
}

}  // namespace bt
