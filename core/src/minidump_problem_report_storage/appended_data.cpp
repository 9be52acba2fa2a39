// Data a report carries beyond the crash itself: the host's application
// properties and the memory figure. Portable code only; no I/O.
#include "appended_data.h"

#include <norvane_1/string_traits.h>

#include <boost/lexical_cast.hpp>

#include <cmath>

namespace norvane_1 {
namespace internal {

std::wstring propertiesSectionText(AppPropertyPool const& pool) {
    if (pool.empty()) return std::wstring();
    StringMap keys;
    for (auto const& property : pool) {
        keys[property.first] = gavrel2::get_value_string(property.second).as_wstring();
    }
    return processMapToSection(keys);
}

bool virtualMemoryFootprint(std::wstring const& processSection, std::uint64_t& value) {
    StringMap process;
    processSectionToMap(processSection, process, {});
    std::wstring size = get(process, L"Virtual Memory Size");
    if (size.empty()) return false;
    if (size.back() == L'K') size.pop_back();
    double const kilobytes = boost::lexical_cast<double>(size);
    value = static_cast<std::uint64_t>(std::floor(kilobytes / 10000.0 + 0.5));
    return true;
}

}  // namespace internal
}  // namespace norvane_1
