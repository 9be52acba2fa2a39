// The module map's storage, insertion and removal.
//
// Only malloc'd memory and block copies live here, because a foreign
// library reads, copies and frees the same structures.
#include <norvane_1/module_map.h>

#include "map_heap.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace norvane_1 {
namespace {

constexpr std::uint64_t kInitialCapacity = 4096;

// Both halves of a block holding `capacity` entries per half, or null when
// the size doesn't fit or the heap is exhausted.
MinidumpAddressRange* allocateHalves(std::uint64_t capacity) {
    constexpr std::uint64_t kMaxEntries = SIZE_MAX / sizeof(MinidumpAddressRange) / 2;
    if (capacity > kMaxEntries) return nullptr;
    std::size_t const bytes = static_cast<std::size_t>(capacity) * 2 * sizeof(MinidumpAddressRange);
    return static_cast<MinidumpAddressRange*>(map_heap::allocate(bytes));
}

MinidumpAddressRange* otherHalf(MinidumpModuleMap const& map) {
    return map.ranges == map.storage ? map.storage + map.capacity : map.storage;
}

// Doubles the capacity. Each old half moves whole to the start of the new
// half of the same number, and the active half stays the one it was.
bool grow(MinidumpModuleMap& map) {
    if (map.capacity > UINT64_MAX / 2) return false;
    std::uint64_t const doubled = map.capacity * 2;
    MinidumpAddressRange* block = allocateHalves(doubled);
    if (block == nullptr) return false;
    std::size_t const halfBytes = static_cast<std::size_t>(map.capacity) * sizeof(MinidumpAddressRange);
    std::memcpy(block, map.storage, halfBytes);
    std::memcpy(block + doubled, map.storage + map.capacity, halfBytes);
    bool const secondActive = map.ranges != map.storage;
    std::free(map.storage);
    map.storage = block;
    map.capacity = doubled;
    map.ranges = secondActive ? block + doubled : block;
    return true;
}

// Writes the entries of one change into the inactive half, then makes that
// half active. The entries it leaves out give their names back to the heap.
class HalfWriter {
public:
    explicit HalfWriter(MinidumpModuleMap& map) : m_map(map), m_out(otherHalf(map)) {}

    void copy(MinidumpAddressRange const& entry) { m_out[m_written++] = entry; }
    static void drop(MinidumpAddressRange const& entry) { std::free(entry.name); }
    void finish() {
        m_map.ranges = m_out;
        m_map.count = m_written;
    }

private:
    MinidumpModuleMap& m_map;
    MinidumpAddressRange* m_out;
    std::uint32_t m_written = 0;
};

// The new range N is placed at most once, at the first entry that lets it.
class Insertion {
public:
    Insertion(MinidumpModuleMap& map, MinidumpAddressRange const& range) : m_out(map), m_range(range) {}

    void walk(MinidumpAddressRange const* entries, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) step(entries[i], i + 1 == count);
        if (!m_placed) HalfWriter::drop(m_range);
        m_out.finish();
    }

private:
    void step(MinidumpAddressRange const& e, bool last) {
        MinidumpAddressRange const& n = m_range;
        if (e.begin > n.end) {  // wholly above
            place();
            m_out.copy(e);
        } else if (e.begin >= n.begin && e.end <= n.end) {  // inside N: replaced
            place();
            HalfWriter::drop(e);
        } else if (e.begin >= n.begin) {  // over N's end
            place();
            m_out.copy(e);
        } else if (e.end <= n.begin) {  // wholly below
            m_out.copy(e);
            if (last) place();
        } else if (e.end <= n.end) {  // over N's start
            m_out.copy(e);
            place();
        } else {  // around N
            m_out.copy(e);
        }
    }

    void place() {
        if (m_placed) return;
        m_out.copy(m_range);
        m_placed = true;
    }

    HalfWriter m_out;
    MinidumpAddressRange const m_range;
    bool m_placed = false;
};

bool touches(MinidumpAddressRange const& e, MinidumpAddressRange const& r) {
    bool const holdsBegin = r.begin >= e.begin && r.begin <= e.end;
    bool const holdsEnd = r.end >= e.begin && r.end <= e.end;
    bool const inside = e.begin >= r.begin && e.end <= r.end;
    return holdsBegin || holdsEnd || inside;
}

}  // namespace

MinidumpModuleMap* minidumpAllocModuleMap() {
    auto* map = static_cast<MinidumpModuleMap*>(map_heap::allocate(sizeof(MinidumpModuleMap)));
    if (map == nullptr) return nullptr;
    map->storage = allocateHalves(kInitialCapacity);
    if (map->storage == nullptr) {
        std::free(map);
        return nullptr;
    }
    map->capacity = kInitialCapacity;
    map->ranges = map->storage;
    map->count = 0;
    return map;
}

void minidumpFreeModuleMap(MinidumpModuleMap* map) {
    if (map == nullptr) return;
    // The inactive half holds stale copies whose names are not its own.
    for (std::uint32_t i = 0; i < map->count; ++i) std::free(map->ranges[i].name);
    std::free(map->storage);
    std::free(map);
}

unsigned char reallocateStorage(MinidumpModuleMap* map) { return grow(*map) ? 1 : 0; }

unsigned char insertAddressRange(MinidumpModuleMap* map, MinidumpAddressRange* range) {
    if (range == nullptr) return 1;
    if (map->count == 0) {
        map->ranges[0] = *range;
        map->count = 1;
        return 1;
    }
    if (map->count >= map->capacity && !grow(*map)) {
        std::free(range->name);
        return 1;
    }
    Insertion(*map, *range).walk(map->ranges, map->count);
    return 1;
}

unsigned char removeAddressRange(MinidumpModuleMap* map, MinidumpAddressRange* range) {
    if (range == nullptr || map->count == 0) return 1;
    HalfWriter out(*map);
    for (std::uint32_t i = 0; i < map->count; ++i) {
        MinidumpAddressRange const& e = map->ranges[i];
        if (touches(e, *range)) {
            HalfWriter::drop(e);
        } else {
            out.copy(e);
        }
    }
    out.finish();
    return 1;
}

}  // namespace norvane_1
