// The portable module scan over a made-up address space.
#include "map_testing.h"

#include "module_map/module_scan.h"

#include <gtest/gtest.h>

#include <map>

namespace norvane_test {
namespace {

using norvane_1::MemoryRegion;

class FakeSpace : public norvane_1::RegionSource {
public:
    // Regions follow each other from the end of the last one.
    FakeSpace& add(std::uint64_t size, char kind, std::uint64_t allocationBase) {
        MemoryRegion region;
        region.base = m_end;
        region.size = size;
        region.free = kind == 'f';
        region.executable = kind == 'x';
        region.allocationBase = kind == 'f' ? 0 : allocationBase;
        m_regions[region.base] = region;
        m_end += size;
        return *this;
    }
    // A new allocation: an image when it has a name.
    FakeSpace& allocation(std::uint64_t size, char kind, std::wstring const& name = L"") {
        if (!name.empty()) m_names[m_end] = name;
        return add(size, kind, m_end);
    }
    // A further region of the allocation that began at `allocationBase`.
    FakeSpace& more(std::uint64_t size, char kind, std::uint64_t allocationBase) {
        return add(size, kind, allocationBase);
    }

    bool query(std::uint64_t address, MemoryRegion& region) override {
        auto found = m_regions.upper_bound(address);
        if (found == m_regions.begin()) return false;
        --found;
        if (address - found->second.base >= found->second.size) return false;
        region = found->second;
        return true;
    }
    bool moduleName(std::uint64_t base, std::wstring& name) override {
        auto found = m_names.find(base);
        if (found == m_names.end()) return false;
        name = found->second;
        return true;
    }

private:
    std::map<std::uint64_t, MemoryRegion> m_regions;
    std::map<std::uint64_t, std::wstring> m_names;
    std::uint64_t m_end = 0;
};

std::vector<Entry> scan(FakeSpace& space, std::vector<std::uint64_t>* bases = nullptr) {
    MapPtr map = newMap();
    norvane_1::scanModules(space, *map);
    if (bases) {
        for (std::uint32_t i = 0; i < map->count; ++i) bases->push_back(map->ranges[i].base);
    }
    return contents(*map);
}

TEST(ModuleScan, EachStretchOfCodeInAnImageMakesOneEntry) {
    FakeSpace space;
    space.allocation(0x1000, 'f')
        .allocation(0x100, 'r', L"a")  // image a at 0x1000
        .more(0x100, 'x', 0x1000)
        .more(0x100, 'x', 0x1000)
        .more(0x100, 'r', 0x1000)
        .more(0x100, 'x', 0x1000)
        .allocation(0x100, 'r', L"data")  // an image without code
        .allocation(0x100, 'x')           // code that belongs to no module
        .allocation(0x100, 'x', L"b")     // b: code up to the free region behind it
        .allocation(0x100, 'f');
    std::vector<std::uint64_t> bases;
    EXPECT_EQ(scan(space, &bases),
              (std::vector<Entry>{{0x1100, 0x1300, L"a"}, {0x1400, 0x1500, L"a"}, {0x1700, 0x1800, L"b"}}));
    EXPECT_EQ(bases, (std::vector<std::uint64_t>{0x1000, 0x1000, 0x1700}));
}

}  // namespace
}  // namespace norvane_test
