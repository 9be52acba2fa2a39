// Facts of a report that come from files rather than from its text: the
// product, the debug identity of the module files, the custom sections.
// The layer above the section codecs that may do I/O. Portable code only.
#pragma once

#include <norvane_1/report_records.h>

#include <string>

namespace norvane_1 {
namespace internal {

// The "support.txt" texts of the modules' installations (the directory above
// each module's own), each text once, in module order; without any, the
// product-location service's product. Records its steps for `reportPath`.
std::wstring detectProductInfo(ModuleInfoList const& modules, wchar_t const* reportPath);

// Fills each module's symbol file, time stamp, size, GUID and age from its
// file; a file that can't be read keeps its record. False when the
// debug-help library can't be bound. Records its step for `reportPath`.
bool readDebugIdentities(ModuleInfoList& modules, wchar_t const* reportPath);

// Sets a section for each entry of the custom-section list in `folder` whose
// file exists, to the file's text; a later entry of a name replaces an
// earlier one. False when the list can't be opened.
bool readCustomSections(std::wstring const& folder, StringMap& sections);

}  // namespace internal
}  // namespace norvane_1
