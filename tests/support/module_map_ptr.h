// A module map that frees itself, for tests and benchmarks.
#pragma once

#include <norvane_1/module_map.h>

#include <memory>

namespace norvane_test {

struct MapFree {
    void operator()(norvane_1::MinidumpModuleMap* map) const { norvane_1::minidumpFreeModuleMap(map); }
};
using MapPtr = std::unique_ptr<norvane_1::MinidumpModuleMap, MapFree>;

inline MapPtr newMap() { return MapPtr(norvane_1::minidumpAllocModuleMap()); }

}  // namespace norvane_test
