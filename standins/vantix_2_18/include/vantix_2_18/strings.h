// String helpers of the portability library.
#pragma once

#include <string>
#include <vector>

namespace VANTIX_2_18 {
namespace strings {

// The parts of `text` between occurrences of `delimiter`, in order, empty
// parts included. A text without the delimiter gives one part, the text
// itself; an empty text gives one empty part. `flags` must be 0.
std::vector<std::wstring> split_string(std::wstring const& text, std::wstring const& delimiter, int flags);

// Replaces every occurrence of `what` in `text` by `with`, left to right,
// never re-examining replaced text. An empty `what` changes nothing.
void replace_all(std::wstring& text, std::wstring const& what, std::wstring const& with);

// ASCII upper case; other characters are left alone.
std::wstring to_upper(std::wstring const& text);

}  // namespace strings
}  // namespace VANTIX_2_18
