// The first two steps of a stack capture: where the thread's stack ends, and
// which of its words are return addresses. Portable code only.
#pragma once

#include "region_source.h"

#include <norvane_1/module_map.h>
#include <norvane_1/report_records.h>

#include <cstdint>
#include <vector>

namespace norvane_1 {

// The part of a thread's stack that the scan reads: from `pointer` up to
// `end`, through the regions of the stack's allocation.
struct StackExtent {
    std::uint64_t pointer = 0;
    std::uint64_t end = 0;
    std::vector<MemoryRegion> regions;  // in address order; the scan reads the readable ones
};

// Region by region from the stack pointer's region upward, while the regions
// belong to its allocation. A stack pointer in no readable region (a stack
// overflow leaves it in the guard below the stack) is taken to mean the
// readable region just above it. False when there is no stack to read.
bool findStackExtent(RegionSource& source, std::uint64_t stackPointer, StackExtent& extent);

// Every 8-byte slot from the end of the stack down to its pointer, kept when
// its word passes the five tests, in order: it doesn't point into the stack,
// it is above 128, the 128 bytes below and above it can be read, and the
// bytes in front of it are a call instruction of a module of `map`.
RawStack scanStack(RegionSource& source, StackExtent const& extent, MinidumpModuleMap const& map);

}  // namespace norvane_1
