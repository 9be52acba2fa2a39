// Data a report carries beyond the crash itself: the host's application
// properties and, for readers of a finished report, the memory figure of
// the "Process" section. No I/O. Portable code only.
#pragma once

#include <norvane_1/problem_report_storage.h>

#include <cstdint>
#include <string>

namespace norvane_1 {
namespace internal {

// Key text of the properties, each value in its text form; empty for none.
std::wstring propertiesSectionText(AppPropertyPool const& pool);

// The "Virtual Memory Size" of a "Process" section ("<kilobytes>K" or a
// number alone) in units of 10000K, rounded; false, and `value` untouched,
// without that figure. A figure that is no number throws
// boost::bad_lexical_cast.
bool virtualMemoryFootprint(std::wstring const& processSection, std::uint64_t& value);

}  // namespace internal
}  // namespace norvane_1
