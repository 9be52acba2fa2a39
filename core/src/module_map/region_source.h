// What the module scan needs to know of a process's address space: its
// regions in address order, and which allocations are modules. Each
// platform provides one source (region_source_windows.cpp,
// region_source_posix.cpp); the scan itself is portable.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace norvane_1 {

// One region as the platform's memory query reports it: pages of one kind
// from `base` on, belonging to the allocation that starts at
// `allocationBase`. A module's image is one allocation.
struct MemoryRegion {
    std::uint64_t base = 0;
    std::uint64_t allocationBase = 0;
    std::uint64_t size = 0;
    bool free = false;        // nothing there at all
    bool executable = false;  // code may run there
    bool readable = false;    // committed and readable: a read there can't fault
};

class RegionSource {
public:
    virtual ~RegionSource() = default;
    // The region that holds `address`. False when there is none, which ends
    // a walk through the address space.
    virtual bool query(std::uint64_t address, MemoryRegion& region) = 0;
    // The file of the module whose image is the allocation at `base`. False
    // when that allocation is not a module.
    virtual bool moduleName(std::uint64_t base, std::wstring& name) = 0;
};

// The source for a process; 0 means this process. Null when a foreign
// process can't be read.
std::unique_ptr<RegionSource> openRegionSource(unsigned long processId);

}  // namespace norvane_1
