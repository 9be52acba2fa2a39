// UTF conversions of the portability library.
//
// A wide string is UTF-16 where wchar_t has 16 bits (Windows) and UTF-32
// where it has 32 bits (Linux). Invalid input never throws: malformed UTF-8
// sequences and lone surrogates become U+FFFD.
#pragma once

#include <string>

namespace VANTIX_2_18 {
namespace utf {

std::string to_utf8(std::wstring const& text);
std::wstring from_utf8(std::string const& text);

}  // namespace utf
}  // namespace VANTIX_2_18
