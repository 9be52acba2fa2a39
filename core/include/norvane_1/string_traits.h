// The text conventions of a problem report: value forms and key text.
//
// A report is a text of "[Name]" sections. Key text is one "Key: value" line
// per entry, in ascending key order. Values are addresses ("0x" and 16
// lower-case hex digits), decimals, escaped text (no blanks or line breaks:
// "&nbsp;", "<br>", "&amp;") or plain text.
//
//   norvane_1::StringMap keys{{L"Path", L"C:\\logs\\crash.dmp"}};
//   std::wstring text = norvane_1::processMapToSection(keys);  // "Path: C:\logs\crash.dmp\n"
//   norvane_1::StringMap back;
//   norvane_1::processSectionToMap(text, back, {});
#pragma once

#include <norvane_1/export.h>
#include <norvane_1/report_records.h>

#include <cstdint>
#include <string>
#include <vector>

namespace norvane_1 {
namespace string_traits {

// "0x" and exactly 16 lower-case hexadecimal digits.
NORVANE_API std::wstring addrToString(std::uint64_t address);
// Reads the address form (and decimal text); stops at the first non-digit.
NORVANE_API std::uint64_t stringToAddr(std::wstring const& text);
NORVANE_API std::wstring numberToString(std::int64_t number);
// Throws boost::bad_lexical_cast unless the text is an optional sign and
// decimal digits within the range of a signed 64-bit number.
NORVANE_API std::int64_t stringToNumber(std::wstring const& text);
// Line ends become "<br>", blanks "&nbsp;", a lone "&" "&amp;".
NORVANE_API std::wstring encodeString(std::wstring const& text);
NORVANE_API std::wstring decodeString(std::wstring const& text);

}  // namespace string_traits

// The value under `key`, or an empty string.
NORVANE_API std::wstring get(StringMap const& map, std::wstring const& key);

// "Key: value" and LF for each entry, in map order. Nothing is escaped.
NORVANE_API std::wstring processMapToSection(StringMap const& map);

// Adds the key lines of `text` to `out`. With an empty `multiLineKeys` a
// value ends at the first line that begins with a word character; with a list
// it ends at an empty line or a line that begins with a listed key and ":",
// and line breaks inside it are removed.
NORVANE_API void processSectionToMap(std::wstring const& text, StringMap& out,
                                     std::vector<std::wstring> const& multiLineKeys);

}  // namespace norvane_1
