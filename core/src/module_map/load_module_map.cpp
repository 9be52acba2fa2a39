// loadModuleMap: the module map of a process, from its address space's
// regions. Portable code only.
#include <norvane_1/module_map.h>

#include "module_scan.h"
#include "region_source.h"

#include <new>

namespace norvane_1 {

unsigned char loadModuleMap(MinidumpModuleMap* map, unsigned long processId) {
    std::unique_ptr<RegionSource> const source = openRegionSourceOrNone(processId);
    return source ? loadModuleMap(map, *source) : 0;
}

unsigned char loadModuleMap(MinidumpModuleMap* map, RegionSource& source) {
    // Every insertion leaves a whole map, so a scan cut short by an
    // exhausted heap still leaves what it found so far.
    try {
        scanModules(source, *map);
    } catch (std::bad_alloc const&) {
    }
    return 1;
}

std::unique_ptr<RegionSource> openRegionSourceOrNone(unsigned long processId) {
    try {
        return openRegionSource(processId);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

}  // namespace norvane_1
