// A module's debug identity, as text a person can take to a symbol store or
// a debug-file directory.
#pragma once

#include <norvane_1/report_records.h>

#include <array>
#include <cstdint>
#include <string>

namespace kelmur_feedback {

// The GUID's bytes in the order the module file holds them: an ELF file's
// first 16 bytes of its GNU build id, a PE file's CodeView GUID.
std::array<std::uint8_t, 16> identityBytes(norvane_1::Guid const& guid);

// "build id <hex>" for an ELF file, whose report GUID holds the start of its
// GNU build id; "guid <guid> age <n>" for a PE file's debug record; "no debug
// identity" when the report has none.
std::string debugIdentity(norvane_1::ModuleInfo const& module);

}  // namespace kelmur_feedback
