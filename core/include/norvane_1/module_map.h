// The module map: the executable address ranges of a process's modules, in
// a plain structure that a foreign library reads and writes directly.
//
//   norvane_1::MinidumpModuleMap* map = norvane_1::minidumpAllocModuleMap();
//   if (map && norvane_1::loadModuleMap(map, 0)) {      // 0: this process
//       for (std::uint32_t i = 0; i < map->count; ++i) use(map->ranges[i]);
//   }
//   norvane_1::minidumpFreeModuleMap(map);
//
// The map keeps its entries sorted by address in one of two halves of one
// heap block. Every change writes its result into the other half and only
// then makes that half active, so the active list is never half-written.
//
// Names. Every entry owns its name: a malloc'd wide string, released with
// free. insertAddressRange takes over the name of the entry it is given,
// whether or not the entry ends up in the map; the caller must neither free
// nor reuse that pointer afterwards. The map frees the name of every entry
// it drops (one that removeAddressRange removes, one that an insertion
// covers, an inserted entry it doesn't place) and, in minidumpFreeModuleMap,
// of every entry left. Two entries must never share one name string.
//
// Heap exhaustion. Nothing here throws. An insertion that would need a
// bigger block and can't get one leaves the map as it was and frees the
// name of the entry it was given.
//
// None of these functions takes a lock: whoever shares a map serialises
// access.
#pragma once

#include <norvane_1/export.h>

#include <cstddef>
#include <cstdint>

namespace norvane_1 {

struct MinidumpAddressRange {
    wchar_t* name;           // full path of the module; may be null
    std::uint64_t base;      // load address of the module
    std::uint64_t begin;     // first address of the range
    std::uint64_t end;       // first address behind the range
    std::uint64_t reserved;  // 0 as this library writes it
};

struct MinidumpModuleMap {
    MinidumpAddressRange* storage;  // two halves of `capacity` entries each
    std::uint64_t capacity;         // entries per half: 4096, doubled as needed
    MinidumpAddressRange* ranges;   // the active half
    std::uint32_t count;            // valid entries at the start of `ranges`
};

// The foreign library reads these structures by their offsets.
static_assert(sizeof(MinidumpAddressRange) == 40, "five 64-bit words");
static_assert(offsetof(MinidumpAddressRange, name) == 0, "layout");
static_assert(offsetof(MinidumpAddressRange, base) == 8, "layout");
static_assert(offsetof(MinidumpAddressRange, begin) == 16, "layout");
static_assert(offsetof(MinidumpAddressRange, end) == 24, "layout");
static_assert(offsetof(MinidumpAddressRange, reserved) == 32, "layout");
static_assert(sizeof(MinidumpModuleMap) == 32, "layout");
static_assert(offsetof(MinidumpModuleMap, storage) == 0, "layout");
static_assert(offsetof(MinidumpModuleMap, capacity) == 8, "layout");
static_assert(offsetof(MinidumpModuleMap, ranges) == 16, "layout");
static_assert(offsetof(MinidumpModuleMap, count) == 24, "layout");

// An empty map with room for 4096 entries; null when the heap is exhausted.
NORVANE_API MinidumpModuleMap* minidumpAllocModuleMap();
// Frees the names of the active entries, the storage and the map. Null is
// passed over.
NORVANE_API void minidumpFreeModuleMap(MinidumpModuleMap* map);
// Doubles the capacity, keeping both halves. 1; 0 when the heap is
// exhausted, with the map unchanged.
NORVANE_API unsigned char reallocateStorage(MinidumpModuleMap* map);

// Inserts `range` in address order; 1 always. Entries wholly inside the new
// range leave the map. Entries that only overlap it stay whole beside it.
// A range wholly inside an entry that reaches past both its ends is not
// placed, unless an entry wholly above it comes later in the map.
NORVANE_API unsigned char insertAddressRange(MinidumpModuleMap* map, MinidumpAddressRange* range);
// Removes every entry that `range` touches: one that holds range->begin or
// range->end (both ends of the entry included) or lies wholly inside the
// range. Only begin and end of `range` are read. 1 always.
NORVANE_API unsigned char removeAddressRange(MinidumpModuleMap* map, MinidumpAddressRange* range);

// Adds one entry for each stretch of executable memory of every module of
// the process; 0 means this process. 0 when a foreign process can't be read,
// the map then unchanged; otherwise 1.
NORVANE_API unsigned char loadModuleMap(MinidumpModuleMap* map, unsigned long processId);

}  // namespace norvane_1
