// A module's debug identity, as text a person can take to a symbol store or
// a debug-file directory.
#pragma once

#include <norvane_1/report_records.h>

#include <string>

namespace kelmur_feedback {

// "build id <hex>" for an ELF file, whose report GUID holds the start of its
// GNU build id; "guid <guid> age <n>" for a PE file's debug record; "no debug
// identity" when the report has none.
std::string debugIdentity(norvane_1::ModuleInfo const& module);

}  // namespace kelmur_feedback
