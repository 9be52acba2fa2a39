#include "module_ranges.h"

#include <algorithm>

namespace bt {
namespace {

std::wstring leafOf(std::wstring const& path) {
    std::size_t const separator = path.find_last_of(L"/\\");
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

}  // namespace

void ModuleRanges::add(std::uint64_t begin, std::uint64_t end, std::wstring const& path) {
    if (end <= begin) return;
    Range range{begin, end, leafOf(path)};
    auto const at = std::upper_bound(m_ranges.begin(), m_ranges.end(), end,
                                     [](std::uint64_t e, Range const& r) { return e < r.end; });
    m_ranges.insert(at, std::move(range));
}

// Ranges of one module share their start and nest; those of two modules
// don't overlap. So the first range that ends above the address is the
// one, if any, that holds it.
ModuleRanges::Range const* ModuleRanges::find(std::uint64_t address) const {
    auto const at = std::upper_bound(m_ranges.begin(), m_ranges.end(), address,
                                     [](std::uint64_t a, Range const& r) { return a < r.end; });
    return at != m_ranges.end() && at->begin <= address ? &*at : nullptr;
}

bool ModuleRanges::contains(std::uint64_t address) const { return find(address) != nullptr; }

std::wstring ModuleRanges::nameAt(std::uint64_t address) const {
    Range const* range = find(address);
    return range ? range->name : std::wstring();
}

}  // namespace bt
