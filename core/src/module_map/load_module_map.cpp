// loadModuleMap: the module map of a process, from its address space's
// regions. Portable code only.
#include <norvane_1/module_map.h>

#include "module_scan.h"
#include "region_source.h"

#include <new>

namespace norvane_1 {

unsigned char loadModuleMap(MinidumpModuleMap* map, unsigned long processId) {
    std::unique_ptr<RegionSource> source;
    try {
        source = openRegionSource(processId);
    } catch (std::bad_alloc const&) {
        return 0;
    }
    if (!source) return 0;
    // Every insertion leaves a whole map, so a scan cut short by an
    // exhausted heap still leaves what it found so far.
    try {
        scanModules(*source, *map);
    } catch (std::bad_alloc const&) {
    }
    return 1;
}

}  // namespace norvane_1
