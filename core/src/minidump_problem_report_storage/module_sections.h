// "Module000", "Module001", ... sections, one per record of the module list,
// and the GUID text. Records in, sections out, and back; no I/O. Portable
// code only.
#pragma once

#include <norvane_1/report_records.h>

#include <cstddef>
#include <string>

namespace norvane_1 {
namespace internal {

// "Module" and the position, zero-filled to at least three digits.
std::wstring moduleSectionName(std::size_t position);

// "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", lower case.
std::wstring guidToString(Guid const& guid);
// Reads that form in either case; any text that isn't 36 characters long
// gives the zero GUID.
Guid stringToGuid(std::wstring const& text);

// Sets the section of each record's position, replacing what stood there.
void writeModuleSections(ModuleInfoList const& modules, StringMap& sections);
// The records of "Module000" upward, up to the first position that has no
// section: the position is a record's only link to its section.
ModuleInfoList readModuleSections(StringMap const& sections);

}  // namespace internal
}  // namespace norvane_1
