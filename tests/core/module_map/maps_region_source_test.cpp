// The module scan over the images and regions of a Linux maps text.
#include "map_testing.h"

#include "module_map/maps_region_source.h"
#include "module_map/module_scan.h"

#include <gtest/gtest.h>

#include <sstream>

namespace norvane_test {
namespace {

char const kMaps[] =
    "55d0a0000000-55d0a0001000 r--p 00000000 08:01 100    /usr/bin/prog\n"
    "55d0a0001000-55d0a0001800 r-xp 00001000 08:01 100    /usr/bin/prog\n"
    "55d0a0001800-55d0a0002000 r-xp 00001800 08:01 100    /usr/bin/prog\n"
    "55d0a0002000-55d0a0003000 r--p 00002000 08:01 100    /usr/bin/prog\n"
    "55d0a0004000-55d0a0005000 rw-p 00003000 08:01 100    /usr/bin/prog\n"
    "55d0a0005000-55d0a0006000 rw-p 00000000 00:00 0 \n"
    "55d0a1000000-55d0a1021000 rw-p 00000000 00:00 0      [heap]\n"
    "7f0000000000-7f0000001000 r-xp 00000000 08:01 200    /lib/a.so (deleted)\n"
    "7f0000001000-7f0000002000 ---p 00000000 00:00 0 \n"
    "7f0000002000-7f0000003000 r-xp 00002000 08:01 200    /lib/a.so (deleted)\n"
    "7f0000003000-7f0000004000 r-xp 00000000 08:01 300    /lib/b with blanks.so\n"
    "7f0000004000-7f0000005000 r-xp 00001000 08:01 301    /lib/b with blanks.so\n"
    "7f0000006000-7f0000007000 r-xp 00000000 00:00 0 \n"
    "7f0000007000-7f0000008000 r--p 00000000 08:01 400    /usr/lib/locale/archive\n"
    "7ffd00000000-7ffd00021000 rw-p 00000000 00:00 0      [stack]\n"
    "7ffd00100000-7ffd00102000 r-xp 00000000 00:00 0      [vdso]\n"
    "7ffd00102000-7ffd00104000 r--p 00000000 00:00 0      [vvar]\n"
    "7ffd00104000-7ffd00106000 r--p 00000000 00:00 0      [vvar_vclock]\n"
    "ffffffffff600000-ffffffffff601000 --xp 00000000 00:00 0  [vsyscall]\n"
    "not a mapping\n";

std::vector<norvane_1::MapsLine> mappingsOf(char const* maps) {
    std::vector<norvane_1::MapsLine> lines;
    std::istringstream text(maps);
    for (std::string line; std::getline(text, line);) {
        norvane_1::MapsLine mapping;
        if (norvane_1::parseMapsLine(line, mapping)) lines.push_back(mapping);
    }
    return lines;
}

TEST(MapsRegionSource, ImagesOfFilesGiveTheirCodeStretches) {
    std::vector<norvane_1::MapsLine> const lines = mappingsOf(kMaps);
    ASSERT_EQ(lines.size(), 19u);
    norvane_1::MapsRegionSource source(lines);
    MapPtr map = newMap();
    norvane_1::scanModules(source, *map);
    // prog's two code mappings make one stretch; a.so is one image across
    // the anonymous page, with a stretch on either side; a second file of the
    // same name (another inode) is an image of its own, its code running up
    // to the free gap. Anonymous code and a file without code make none.
    EXPECT_EQ(contents(*map), (std::vector<Entry>{{0x55d0a0001000, 0x55d0a0002000, L"/usr/bin/prog"},
                                                  {0x7f0000000000, 0x7f0000001000, L"/lib/a.so"},
                                                  {0x7f0000002000, 0x7f0000003000, L"/lib/a.so"},
                                                  {0x7f0000003000, 0x7f0000004000, L"/lib/b with blanks.so"},
                                                  {0x7f0000004000, 0x7f0000005000, L"/lib/b with blanks.so"}}));
    std::vector<std::uint64_t> bases;
    for (std::uint32_t i = 0; i < map->count; ++i) bases.push_back(map->ranges[i].base);
    EXPECT_EQ(bases, (std::vector<std::uint64_t>{0x55d0a0000000, 0x7f0000000000, 0x7f0000000000, 0x7f0000003000,
                                                 0x7f0000004000}));
}

// The stack capture reads only what these say is readable: a mapping with
// "r", but neither the kernel's time pages, which fault in parts, nor a gap
// inside an image.
TEST(MapsRegionSource, ReadableRegionsAreTheReadableMappings) {
    std::vector<norvane_1::MapsLine> const lines = mappingsOf(kMaps);
    norvane_1::MapsRegionSource source(lines);
    struct {
        std::uint64_t address;
        bool readable;
    } const cases[] = {
        {0x55d0a0000800, true},   // r--p
        {0x55d0a0003800, false},  // the gap inside prog's image
        {0x7f0000001800, false},  // ---p
        {0x7ffd00000800, true},   // [stack]
        {0x7ffd00102800, false},  // [vvar]
        {0x7ffd00104800, false},  // [vvar_vclock]
        {0x7ffd00200000, false},  // nothing mapped
    };
    for (auto const& c : cases) {
        norvane_1::MemoryRegion region;
        bool const found = source.query(c.address, region);
        EXPECT_EQ(found && region.readable, c.readable) << std::hex << c.address;
    }
}

}  // namespace
}  // namespace norvane_test
