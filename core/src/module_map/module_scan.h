// Module enumeration over a region source: finds each module's image in
// the address space and adds one map entry for each uninterrupted stretch
// of executable regions in it.
#pragma once

#include "region_source.h"

#include <norvane_1/module_map.h>

#include <cstdint>
#include <string>

namespace norvane_1 {

// Walks the whole address space from address 0.
void scanModules(RegionSource& source, MinidumpModuleMap& map);

// loadModuleMap over a source the caller has opened: the in-process
// collection reads the module map and the crashed stack's regions from one
// snapshot of the address space.
unsigned char loadModuleMap(MinidumpModuleMap* map, RegionSource& source);
// openRegionSource, or none where the heap is exhausted.
std::unique_ptr<RegionSource> openRegionSourceOrNone(unsigned long processId);

// Adds the executable stretches of one module: its regions from `base` up
// to `limit`, each entry with its own copy of `name`.
void addModuleRanges(RegionSource& source, MinidumpModuleMap& map, std::uint64_t base, std::uint64_t limit,
                     std::wstring const& name);

}  // namespace norvane_1
