// The list of custom sections that a program registers for its reports,
// "norvane_custom_sections.txt": its one reader and its one writer.
// Portable code only.
//
// The list holds two lines per section, name then path of the file with
// the section's text, in UTF-8, and is only ever appended to.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace norvane_1 {
namespace internal {

constexpr wchar_t kCustomSectionListName[] = L"norvane_custom_sections.txt";

// Name and path, in the order the list holds them.
using CustomSectionList = std::vector<std::pair<std::wstring, std::wstring>>;

// Reads the list in `folder` (the list's name is appended to it as it is).
// A pair in which a line is empty is passed over, so a name without a path
// at the end is. False when the list can't be opened.
bool readCustomSectionList(std::wstring const& folder, CustomSectionList& list);

enum class ListAddition { added, nameTaken, fileError };

// Appends a section to the list in `folder`, which it creates when missing,
// unless the list names it already.
ListAddition addToCustomSectionList(std::wstring const& folder, std::wstring const& name, std::wstring const& path);

}  // namespace internal
}  // namespace norvane_1
