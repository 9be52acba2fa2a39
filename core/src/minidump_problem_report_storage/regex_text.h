// Regular-expression helpers shared by the report codecs. Portable code only.
//
// Expressions that don't depend on a call's arguments are compiled once, the
// first time they are used, and then shared read-only between threads (a
// compiled boost::wregex may be used concurrently).
#pragma once

#include <boost/regex.hpp>

#include <string>

namespace norvane_1 {
namespace internal {

using TextIterator = std::wstring::const_iterator;
using TextMatch = boost::match_results<TextIterator>;

// regex_replace with conditional format strings. A regex_error (a bad
// expression, or a match too complex to finish) gives an empty string.
std::wstring replaceAllByRegex(std::wstring const& text, boost::wregex const& expression, std::wstring const& format);

// An expression of the report reader. Its word characters are those of
// Unicode on every platform, so that a section name outside ASCII is read
// alike wherever the report was written (regex_locale_*.cpp).
boost::wregex readerExpression(std::wstring const& pattern);
void assignReaderExpression(boost::wregex& expression, std::wstring const& pattern);

// The escaping of report values, with their expressions compiled once.
std::wstring encodeText(std::wstring const& text);
std::wstring decodeText(std::wstring const& text);

// Removes white space from both ends (global locale).
std::wstring trim(std::wstring const& text);

}  // namespace internal
}  // namespace norvane_1
