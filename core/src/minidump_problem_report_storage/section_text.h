// A report's text as named sections, and back. No I/O. Portable code only.
#pragma once

#include <norvane_1/report_records.h>

#include <string>

namespace norvane_1 {
namespace internal {

// The next section of `text` from `start` on: a head is "[Name]" with a line
// break directly in front of "[" and behind "]". Sets `name` (trimmed) and
// `body` (without line breaks at either end) and returns where to search
// on; `name` is empty, and the result text.end(), when no head follows.
std::wstring::const_iterator nextSection(std::wstring const& text, std::wstring::const_iterator start,
                                         std::wstring& name, std::wstring& body);

// Adds every section of `text` to `sections`; a later section of a name
// replaces an earlier one. A head on the first line counts.
void splitSections(std::wstring const& text, StringMap& sections);

// The report text: the sections with a fixed place first, in their order,
// then all others by name, "CreationLog" last; each as "[Name]", LF, its
// text, LF, LF. Empty sections are left out.
std::wstring joinSections(StringMap const& sections);

}  // namespace internal
}  // namespace norvane_1
