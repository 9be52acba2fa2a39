// The address space of a Linux process as its /proc/<pid>/maps text tells
// it, presented like the regions of a Windows memory query: the mappings
// of one file that follow each other make one image, an allocation whose
// base is the start of its first mapping; holes and anonymous mappings in
// between belong to that image too, so that the scan treats the image as
// one piece. Gaps between images are free regions.
#pragma once

#include "region_source.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace norvane_1 {

// One line of a maps text.
struct MapsLine {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    bool executable = false;
    bool readable = false;  // the kernel's time pages ("[vvar]", "[vvar_vclock]") are listed
                            // readable, yet parts of them fault when read
    std::string file;       // the mapped file's path, or empty when not a file ("[heap]", anonymous)
    std::string identity;   // device and inode, which tell two files of one name apart
};

// False for a line that is not a mapping. A deleted file keeps its path,
// without the " (deleted)" the kernel adds.
bool parseMapsLine(std::string const& line, MapsLine& mapping);

class MapsRegionSource : public RegionSource {
public:
    // `mappings` in address order, as the kernel lists them.
    explicit MapsRegionSource(std::vector<MapsLine> const& mappings);

    bool query(std::uint64_t address, MemoryRegion& region) override;
    bool moduleName(std::uint64_t base, std::wstring& name) override;

private:
    struct Image {
        std::uint64_t begin;
        std::uint64_t end;
    };
    void collectImages(std::vector<MapsLine> const& mappings);
    void collectRegions(std::vector<MapsLine> const& mappings);
    Image const* imageAt(std::uint64_t address) const;
    void addRegion(std::uint64_t begin, std::uint64_t size, bool free, MapsLine const* mapping);

    std::vector<Image> m_images;
    std::map<std::uint64_t, std::wstring> m_names;  // image base -> file
    std::vector<MemoryRegion> m_regions;
};

}  // namespace norvane_1
