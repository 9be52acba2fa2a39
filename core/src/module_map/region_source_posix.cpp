// Linux: the regions come from /proc/<pid>/maps.
#include "region_source.h"

#include "maps_region_source.h"

#include <fstream>
#include <string>
#include <vector>

namespace norvane_1 {

std::unique_ptr<RegionSource> openRegionSource(unsigned long processId) {
    std::string const path = processId == 0 ? std::string("/proc/self/maps")
                                            : "/proc/" + std::to_string(processId) + "/maps";
    std::ifstream file(path);
    if (!file.is_open()) return nullptr;
    // The scan asks for regions again and again; one snapshot of the list
    // keeps its answers consistent while the process goes on mapping.
    std::vector<MapsLine> mappings;
    std::string line;
    MapsLine mapping;
    while (std::getline(file, line)) {
        if (parseMapsLine(line, mapping)) mappings.push_back(mapping);
    }
    if (file.bad()) return nullptr;
    return std::make_unique<MapsRegionSource>(mappings);
}

}  // namespace norvane_1
