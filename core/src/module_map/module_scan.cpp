// Module enumeration over a region source: each image found once, with its
// whole range. Portable code only.
#include "module_scan.h"

#include "map_heap.h"

namespace norvane_1 {
namespace {

// The address behind a region; 0 when it wraps, which ends any walk.
std::uint64_t behind(MemoryRegion const& region) {
    std::uint64_t const next = region.base + region.size;
    return next > region.base ? next : 0;
}

// Without room for the name copy the entry is left out: an entry without
// a module name can't be told apart from anonymous code.
void insertRange(MinidumpModuleMap& map, std::uint64_t base, std::uint64_t begin, std::uint64_t end,
                 std::wstring const& name) {
    MinidumpAddressRange entry{};
    entry.name = map_heap::duplicate(name.c_str());
    if (entry.name == nullptr) return;
    entry.base = base;
    entry.begin = begin;
    entry.end = end;
    insertAddressRange(&map, &entry);
}

// The module found so far in the walk, if any.
class OpenModule {
public:
    OpenModule(RegionSource& source, MinidumpModuleMap& map) : m_source(source), m_map(map) {}

    void open(std::uint64_t base) {
        m_base = base;
        m_open = m_source.moduleName(base, m_name);
    }
    void close(std::uint64_t limit) {
        if (m_open) addModuleRanges(m_source, m_map, m_base, limit, m_name);
        m_open = false;
    }

private:
    RegionSource& m_source;
    MinidumpModuleMap& m_map;
    std::uint64_t m_base = 0;
    std::wstring m_name;
    bool m_open = false;
};

}  // namespace

void addModuleRanges(RegionSource& source, MinidumpModuleMap& map, std::uint64_t base, std::uint64_t limit,
                     std::wstring const& name) {
    bool inRun = false;
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    MemoryRegion region;
    for (std::uint64_t address = base; address != 0 && address < limit; address = behind(region)) {
        if (!source.query(address, region)) break;
        if (!region.free && region.executable) {
            if (!inRun) begin = region.base;
            inRun = true;
            end = behind(region);
        } else if (inRun) {
            insertRange(map, base, begin, end, name);
            inRun = false;
        }
    }
    if (inRun) insertRange(map, base, begin, end, name);
}

void scanModules(RegionSource& source, MinidumpModuleMap& map) {
    OpenModule module(source, map);
    MemoryRegion region;
    std::uint64_t lastBase = 0;
    std::uint64_t address = 0;
    do {
        if (!source.query(address, region)) break;
        lastBase = region.base;
        if (region.free) {
            module.close(region.base);
        } else if (region.allocationBase == region.base && region.allocationBase != 0) {
            module.close(region.base);
            module.open(region.base);
        }
        address = behind(region);
    } while (address != 0);
    module.close(lastBase);
}

}  // namespace norvane_1
