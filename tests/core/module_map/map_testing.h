// Helpers of the module map tests: entries with heap names, and the map's
// contents in comparable form.
#pragma once

#include <norvane_1/module_map.h>

#include "module_map/map_heap.h"
#include "module_map_ptr.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace norvane_test {

// An entry whose name is its own heap copy, as the map expects.
inline norvane_1::MinidumpAddressRange entry(std::uint64_t begin, std::uint64_t end, std::wstring const& name) {
    return norvane_1::MinidumpAddressRange{norvane_1::map_heap::duplicate(name.c_str()), 0x1000, begin, end, 0};
}

inline void insert(norvane_1::MinidumpModuleMap& map, std::uint64_t begin, std::uint64_t end,
                   std::wstring const& name) {
    norvane_1::MinidumpAddressRange range = entry(begin, end, name);
    norvane_1::insertAddressRange(&map, &range);
}

inline void remove(norvane_1::MinidumpModuleMap& map, std::uint64_t begin, std::uint64_t end) {
    norvane_1::MinidumpAddressRange range{nullptr, 0, begin, end, 0};
    norvane_1::removeAddressRange(&map, &range);
}

struct Entry {
    std::uint64_t begin;
    std::uint64_t end;
    std::wstring name;
    bool operator==(Entry const& other) const { return begin == other.begin && end == other.end && name == other.name; }
};

inline std::ostream& operator<<(std::ostream& out, Entry const& e) {
    return out << std::string(e.name.begin(), e.name.end()) << "[" << e.begin << "," << e.end << ")";
}

inline std::vector<Entry> contents(norvane_1::MinidumpModuleMap const& map) {
    std::vector<Entry> out;
    for (std::uint32_t i = 0; i < map.count; ++i) {
        auto const& r = map.ranges[i];
        out.push_back(Entry{r.begin, r.end, r.name ? r.name : L""});
    }
    return out;
}

}  // namespace norvane_test
