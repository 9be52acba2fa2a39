// Hexadecimal text of addresses and thread ids, without streams.
//
// Contexts and stacks write thousands of addresses per report, so these go by
// table lookup rather than through a formatted stream. Portable code only.
#pragma once

#include <cstdint>
#include <string>

namespace norvane_1 {
namespace internal {

// Appends "0x" and 16 lower-case hexadecimal digits.
void appendAddress(std::wstring& out, std::uint64_t value);
// "0x" and 8 lower-case hexadecimal digits: the thread id in a section name.
std::wstring threadIdToString(std::uint32_t threadId);

// Reads hexadecimal digits after an optional "0x"/"0X". Never fails: any
// other character counts as digit 0, and bits shifted out at the top are lost.
std::uint32_t parseHex32(std::wstring const& text);
std::uint64_t parseHex64(std::wstring const& text);

}  // namespace internal
}  // namespace norvane_1
