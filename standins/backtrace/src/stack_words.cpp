// Telling return addresses from other words of a stack. Portable code only.
#include <backtrace/bt_helper.h>

#include "call_decoder.h"

#include <algorithm>

namespace bt {
namespace {

// The map's entries are sorted by address and don't overlap.
bool inModuleCode(norvane_1::MinidumpModuleMap const& map, std::uint64_t address) {
    norvane_1::MinidumpAddressRange const* first = map.ranges;
    norvane_1::MinidumpAddressRange const* last = map.ranges + map.count;
    auto const above = std::upper_bound(
        first, last, address, [](std::uint64_t a, norvane_1::MinidumpAddressRange const& r) { return a < r.begin; });
    return above != first && address < (above - 1)->end;
}

}  // namespace

bool inStackArea(std::uint64_t word, std::uint64_t slot, std::uint64_t stackEnd, norvane_1::RawStack&) {
    return word >= slot && word < stackEnd;
}

bool isCallInstruction(std::uint64_t candidate, unsigned char const* code, norvane_1::MinidumpModuleMap const* map) {
    if (map == nullptr || map->ranges == nullptr) return false;
    // The call itself lies in the module: a call that ends a function still
    // returns to the address behind that function.
    if (!inModuleCode(*map, candidate - 1)) return false;
    return callEndsAt(candidate, code, [map](std::uint64_t target) { return inModuleCode(*map, target); });
}

}  // namespace bt
