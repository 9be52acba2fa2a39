// The regions of a process as the text of /proc/<pid>/maps gives them.
// Portable code only: the text is parsed here, read elsewhere.
#include "maps_region_source.h"

#include <vantix_2_18/utf.h>

#include <algorithm>
#include <string_view>

namespace norvane_1 {
namespace {

// Reads a hexadecimal number up to `stop`; false without digits.
bool readHex(std::string_view text, std::size_t& at, char stop, std::uint64_t& value) {
    std::size_t const end = text.find(stop, at);
    if (end == std::string_view::npos || end == at || end - at > 16) return false;
    value = 0;
    for (char const digit : text.substr(at, end - at)) {
        int const nibble = digit >= '0' && digit <= '9'   ? digit - '0'
                           : digit >= 'a' && digit <= 'f' ? digit - 'a' + 10
                           : digit >= 'A' && digit <= 'F' ? digit - 'A' + 10
                                                          : -1;
        if (nibble < 0) return false;
        value = value << 4 | static_cast<std::uint64_t>(nibble);
    }
    at = end + 1;
    return true;
}

// The next field delimited by blanks. A view, not a copy: a crash parses
// every line of the text, and the copies were most of that work.
std::string_view readField(std::string_view text, std::size_t& at) {
    at = text.find_first_not_of(' ', at);
    if (at == std::string_view::npos) {
        at = text.size();
        return std::string_view();
    }
    std::size_t const end = std::min(text.find(' ', at), text.size());
    std::string_view const field = text.substr(at, end - at);
    at = end;
    return field;
}

std::string_view filePath(std::string_view path) {
    constexpr std::string_view kDeleted = " (deleted)";
    if (path.empty() || path[0] != '/') return std::string_view();
    if (path.size() > kDeleted.size() && path.substr(path.size() - kDeleted.size()) == kDeleted) {
        path.remove_suffix(kDeleted.size());
    }
    return path;
}

}  // namespace

bool parseMapsLine(std::string const& text, MapsLine& mapping) {
    std::string_view const line(text);
    std::size_t at = 0;
    if (!readHex(line, at, '-', mapping.begin) || !readHex(line, at, ' ', mapping.end)) return false;
    std::string_view const permissions = readField(line, at);
    readField(line, at);  // the offset
    std::string_view const device = readField(line, at);
    std::string_view const inode = readField(line, at);
    if (permissions.size() < 4 || inode.empty() || mapping.end <= mapping.begin) return false;
    mapping.executable = permissions[2] == 'x';
    std::size_t const path = line.find_first_not_of(' ', at);
    std::string_view const name = path == std::string_view::npos ? std::string_view() : line.substr(path);
    mapping.readable = permissions[0] == 'r' && name.substr(0, 5) != "[vvar";
    mapping.file.assign(filePath(name));
    mapping.identity.assign(device).append(" ").append(inode);
    return true;
}

MapsRegionSource::MapsRegionSource(std::vector<MapsLine> const& mappings) {
    collectImages(mappings);
    collectRegions(mappings);
}

// Mappings of one file make one image while no other file comes between.
void MapsRegionSource::collectImages(std::vector<MapsLine> const& mappings) {
    MapsLine const* current = nullptr;
    for (MapsLine const& mapping : mappings) {
        if (mapping.file.empty()) continue;
        bool const sameFile = current && current->file == mapping.file && current->identity == mapping.identity;
        if (sameFile) {
            m_images.back().end = mapping.end;
            continue;
        }
        m_images.push_back(Image{mapping.begin, mapping.end});
        m_names[mapping.begin] = VANTIX_2_18::utf::from_utf8(mapping.file);
        current = &mapping;
    }
}

void MapsRegionSource::collectRegions(std::vector<MapsLine> const& mappings) {
    std::uint64_t covered = 0;
    for (MapsLine const& mapping : mappings) {
        if (mapping.begin < covered) continue;  // the kernel never overlaps them; a damaged list might
        if (mapping.begin > covered) addRegion(covered, mapping.begin - covered, true, nullptr);
        addRegion(mapping.begin, mapping.end - mapping.begin, false, &mapping);
        covered = mapping.end;
    }
    // The rest of the address space is free; its size wraps to reach 2^64.
    if (covered != 0) addRegion(covered, 0 - covered, true, nullptr);
}

// A gap inside an image is part of it: reserved, not free.
void MapsRegionSource::addRegion(std::uint64_t begin, std::uint64_t size, bool free, MapsLine const* mapping) {
    MemoryRegion region;
    region.base = begin;
    region.size = size;
    region.executable = mapping && mapping->executable;
    region.readable = mapping && mapping->readable;
    Image const* image = imageAt(begin);
    region.free = free && image == nullptr;
    region.allocationBase = image ? image->begin : (region.free ? 0 : begin);
    m_regions.push_back(region);
}

MapsRegionSource::Image const* MapsRegionSource::imageAt(std::uint64_t address) const {
    auto after = std::upper_bound(m_images.begin(), m_images.end(), address,
                                  [](std::uint64_t a, Image const& image) { return a < image.begin; });
    if (after == m_images.begin()) return nullptr;
    Image const& image = *(after - 1);
    return address < image.end ? &image : nullptr;
}

bool MapsRegionSource::query(std::uint64_t address, MemoryRegion& region) {
    auto after = std::upper_bound(m_regions.begin(), m_regions.end(), address,
                                  [](std::uint64_t a, MemoryRegion const& r) { return a < r.base; });
    if (after == m_regions.begin()) return false;
    MemoryRegion const& found = *(after - 1);
    if (address - found.base >= found.size) return false;
    region = found;
    return true;
}

bool MapsRegionSource::moduleName(std::uint64_t base, std::wstring& name) {
    auto found = m_names.find(base);
    if (found == m_names.end()) return false;
    name = found->second;
    return true;
}

}  // namespace norvane_1
