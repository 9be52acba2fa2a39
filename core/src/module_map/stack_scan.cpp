// Finding a thread's stack and scanning it. Portable code only.
//
// The scan reads the stack words in place: the thread is held still while
// its stack is read, so the words don't change under the scan. Only slots
// of readable regions are read, and a word's neighbourhood is copied only
// when the region queries say it can be read, so a damaged stack pointer or
// a stack full of garbage gives few return addresses, never a fault.
#include "stack_scan.h"

#include <backtrace/bt_helper.h>

#include <cstddef>

namespace norvane_1 {
namespace {

constexpr std::uint64_t kSlot = 8;
constexpr std::uint64_t kNeighbourhood = 128;  // bytes looked at on each side of a candidate
// How far below the stack proper a stack pointer may stand after an overflow.
constexpr std::uint64_t kGuardReach = 64 * 1024;

std::uint64_t behind(MemoryRegion const& region) { return region.base + region.size; }

// Another thread's stack holds the address sanitizer's poisoned zones, and a
// word may point anywhere, into memory freed long ago or being written by
// another thread: these reads are meant, so they bypass both sanitizers'
// checks (and memcpy, which they intercept). The regions were found readable.
__attribute__((no_sanitize("address", "thread"))) std::uint64_t wordAt(std::uint64_t address) {
    return *reinterpret_cast<std::uint64_t const volatile*>(address);
}

// Copies whole aligned words, which lie in the same pages as the bytes asked
// for: the copy of a candidate's neighbourhood starts up to 7 bytes early.
__attribute__((no_sanitize("address", "thread"))) void copyWords(std::uint64_t address, std::uint64_t* to,
                                                                 std::size_t words) {
    for (std::size_t i = 0; i < words; ++i) to[i] = wordAt(address + i * kSlot);
}

// The last region asked for is asked again and again: words of one frame
// point into the same few regions.
class RegionCache {
public:
    explicit RegionCache(RegionSource& source) : m_source(source) {}

    bool readable(std::uint64_t address) {
        if (!m_known || address < m_last.base || address - m_last.base >= m_last.size) {
            m_known = m_source.query(address, m_last);
            if (!m_known) return false;
        }
        return m_last.readable;
    }

private:
    RegionSource& m_source;
    MemoryRegion m_last;
    bool m_known = false;
};

bool looksLikeReturnAddress(std::uint64_t word, std::uint64_t slot, StackExtent const& extent, RawStack& found,
                            RegionCache& regions, MinidumpModuleMap const& map) {
    if (bt::inStackArea(word, slot, extent.end, found)) return false;                           // a.
    if (word <= kNeighbourhood || word > ~std::uint64_t(0) - 2 * kNeighbourhood) return false;  // b.
    if (!regions.readable(word - kNeighbourhood)) return false;                                 // c.
    if (!regions.readable(word + kNeighbourhood)) return false;                                 // d.
    std::uint64_t const first = (word - kNeighbourhood) & ~(kSlot - 1);                         // e.
    std::uint64_t code[2 * kNeighbourhood / kSlot + 1];
    copyWords(first, code, sizeof code / sizeof code[0]);
    auto const* bytes = reinterpret_cast<unsigned char const*>(code) + (word - first);
    return bt::isCallInstruction(word, bytes, &map);
}

}  // namespace

bool findStackExtent(RegionSource& source, std::uint64_t stackPointer, StackExtent& extent) {
    MemoryRegion region;
    if (!source.query(stackPointer, region)) return false;
    if (!region.readable) {
        std::uint64_t const above = behind(region);
        if (above <= stackPointer || above - stackPointer > kGuardReach) return false;
        if (!source.query(above, region) || !region.readable) return false;
    }
    extent.pointer = stackPointer;
    extent.regions = {region};
    std::uint64_t const allocation = region.allocationBase;
    for (;;) {
        std::uint64_t const next = behind(extent.regions.back());
        if (next <= extent.regions.back().base || !source.query(next, region)) break;
        if (region.free || region.allocationBase != allocation) break;
        extent.regions.push_back(region);
    }
    extent.end = behind(extent.regions.back());
    return true;
}

RawStack scanStack(RegionSource& source, StackExtent const& extent, MinidumpModuleMap const& map) {
    RawStack found;
    RegionCache regions(source);
    for (auto region = extent.regions.rbegin(); region != extent.regions.rend(); ++region) {
        if (!region->readable) continue;
        std::uint64_t const low = region->base > extent.pointer ? region->base : extent.pointer;
        for (std::uint64_t slot = behind(*region) - kSlot; slot >= low && slot < behind(*region); slot -= kSlot) {
            std::uint64_t const word = wordAt(slot);
            if (looksLikeReturnAddress(word, slot, extent, found, regions, map)) found[slot] = word;
        }
    }
    return found;
}

}  // namespace norvane_1
