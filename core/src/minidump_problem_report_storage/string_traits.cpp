// Value forms of report text. Portable code only.
#include <norvane_1/string_traits.h>

#include "hex_text.h"
#include "regex_text.h"

#include <vantix_2_18/convert.h>

#include <boost/lexical_cast.hpp>

namespace norvane_1 {
namespace string_traits {

std::wstring addrToString(std::uint64_t address) {
    std::wstring text;
    internal::appendAddress(text, address);
    return text;
}

std::uint64_t stringToAddr(std::wstring const& text) {
    namespace convert = VANTIX_2_18::generic::convert;
    return convert::str_to_uint64(text.c_str(), text.size(), convert::radix_t::automatic, false);
}

std::wstring numberToString(std::int64_t number) { return std::to_wstring(number); }

std::int64_t stringToNumber(std::wstring const& text) { return boost::lexical_cast<std::int64_t>(text); }

std::wstring encodeString(std::wstring const& text) { return internal::encodeText(text); }

std::wstring decodeString(std::wstring const& text) { return internal::decodeText(text); }

}  // namespace string_traits
}  // namespace norvane_1
