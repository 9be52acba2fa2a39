// The map's failures: a process that can't be read, and an exhausted heap at
// each allocation the map makes. The map's allocator is swapped for one that
// fails after a set number of allocations; the sanitizer build proves that
// nothing leaks or is written out of bounds.
#include "map_testing.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace norvane_test {
namespace {

TEST(LoadModuleMap, AProcessThatCannotBeOpenedGivesZeroAndNoChange) {
    MapPtr map = newMap();
    EXPECT_EQ(norvane_1::loadModuleMap(map.get(), 0x7FFFFFF0ul), 0);
    EXPECT_EQ(map->count, 0u);
}

int g_allocationsLeft = 0;

void* limitedAllocate(std::size_t bytes) {
    if (g_allocationsLeft == 0) return nullptr;
    --g_allocationsLeft;
    return std::malloc(bytes);
}

class ExhaustedHeap : public ::testing::Test {
protected:
    void TearDown() override { norvane_1::map_heap::setAllocatorForTesting(nullptr); }
    static void allowAllocations(int count) {
        g_allocationsLeft = count;
        norvane_1::map_heap::setAllocatorForTesting(limitedAllocate);
    }
};

TEST_F(ExhaustedHeap, CreationGivesNullWhicheverAllocationFails) {
    for (int allowed : {0, 1}) {
        allowAllocations(allowed);
        EXPECT_EQ(norvane_1::minidumpAllocModuleMap(), nullptr) << allowed;
    }
}

// A full half: the insertion would reallocate first.
TEST_F(ExhaustedHeap, GrowthThatFailsLeavesTheMapAndFreesTheName) {
    MapPtr map = newMap();
    for (std::uint64_t i = 0; i < 4096; ++i) insert(*map, i * 16, i * 16 + 8, L"m");
    auto* const storage = map->storage;
    auto* const ranges = map->ranges;
    norvane_1::MinidumpAddressRange range = entry(1, 2, L"N");  // its name is made before the heap runs out
    allowAllocations(0);
    EXPECT_EQ(norvane_1::reallocateStorage(map.get()), 0);
    EXPECT_EQ(norvane_1::insertAddressRange(map.get(), &range), 1);
    EXPECT_EQ(map->storage, storage);
    EXPECT_EQ(map->ranges, ranges);
    EXPECT_EQ(map->capacity, 4096u);
    EXPECT_EQ(map->count, 4096u);
    EXPECT_EQ(map->ranges[0].begin, 0u);
}

TEST_F(ExhaustedHeap, LoadingLeavesOutEntriesWithoutRoomForTheirNames) {
    MapPtr map = newMap();
    allowAllocations(0);
    EXPECT_EQ(norvane_1::loadModuleMap(map.get(), 0), 1);
    EXPECT_EQ(map->count, 0u);
    allowAllocations(3);
    EXPECT_EQ(norvane_1::loadModuleMap(map.get(), 0), 1);
    EXPECT_GT(map->count, 0u);
    EXPECT_LE(map->count, 3u);
}

}  // namespace
}  // namespace norvane_test
