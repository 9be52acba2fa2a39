// Insertion and removal rules of the module map, and what a reallocation
// keeps. A reallocation that fails is in map_heap_failure_test.cpp.
#include "map_testing.h"

#include <gtest/gtest.h>

namespace norvane_test {
namespace {

using norvane_1::MinidumpModuleMap;

struct Change {
    char const* what;
    std::vector<Entry> before;  // inserted in this order first
    std::uint64_t begin;
    std::uint64_t end;
    std::vector<Entry> after;
};

// Entries named "a", "b", "c" are there before; "N" is the inserted one.
std::vector<Change> const kInsertions = {
    {"first entry of an empty map", {}, 10, 20, {{10, 20, L"N"}}},
    {"equal range replaces", {{10, 20, L"a"}}, 10, 20, {{10, 20, L"N"}}},
    {"covering several leaves one", {{10, 20, L"a"}, {30, 40, L"b"}, {50, 60, L"c"}}, 5, 70, {{5, 70, L"N"}}},
    {"below all is first", {{10, 20, L"a"}, {30, 40, L"b"}}, 1, 5, {{1, 5, L"N"}, {10, 20, L"a"}, {30, 40, L"b"}}},
    {"above all is last", {{10, 20, L"a"}, {30, 40, L"b"}}, 50, 60, {{10, 20, L"a"}, {30, 40, L"b"}, {50, 60, L"N"}}},
    {"between two", {{10, 20, L"a"}, {30, 40, L"b"}}, 22, 28, {{10, 20, L"a"}, {22, 28, L"N"}, {30, 40, L"b"}}},
    {"beginning at an entry's end stands behind it", {{10, 20, L"a"}}, 20, 30, {{10, 20, L"a"}, {20, 30, L"N"}}},
    {"ending at an entry's begin stands before it", {{20, 30, L"a"}}, 10, 20, {{10, 20, L"N"}, {20, 30, L"a"}}},
    {"overlapping an entry's end keeps both whole", {{10, 25, L"a"}}, 20, 30, {{10, 25, L"a"}, {20, 30, L"N"}}},
    {"overlapping an entry's begin keeps both whole", {{25, 40, L"a"}}, 20, 30, {{20, 30, L"N"}, {25, 40, L"a"}}},
    {"inside the only entry is not placed", {{10, 40, L"a"}}, 20, 30, {{10, 40, L"a"}}},
};

TEST(ModuleMapInsertion, FollowsTheRulesForEachCase) {
    for (auto const& c : kInsertions) {
        SCOPED_TRACE(c.what);
        MapPtr map = newMap();
        for (auto const& e : c.before) insert(*map, e.begin, e.end, e.name);
        insert(*map, c.begin, c.end, L"N");
        EXPECT_EQ(contents(*map), c.after);
    }
}

// Every removal looks at both ends of the range and both ends of each entry.
std::vector<Change> const kRemovals = {
    {"touching nothing keeps all", {{10, 20, L"a"}, {30, 40, L"b"}}, 22, 28, {{10, 20, L"a"}, {30, 40, L"b"}}},
    {"begin on an entry's end", {{10, 20, L"a"}, {30, 40, L"b"}}, 20, 25, {{30, 40, L"b"}}},
    {"end on an entry's begin", {{10, 20, L"a"}, {30, 40, L"b"}}, 25, 30, {{10, 20, L"a"}}},
    {"entries inside the range", {{10, 20, L"a"}, {30, 40, L"b"}}, 5, 45, {}},
    {"range inside an entry", {{10, 40, L"a"}}, 20, 30, {}},
    {"range across two of three", {{10, 20, L"a"}, {30, 40, L"b"}, {50, 60, L"c"}}, 15, 35, {{50, 60, L"c"}}},
};

TEST(ModuleMapRemoval, FollowsTheRulesForEachCase) {
    for (auto const& c : kRemovals) {
        SCOPED_TRACE(c.what);
        MapPtr map = newMap();
        for (auto const& e : c.before) insert(*map, e.begin, e.end, e.name);
        remove(*map, c.begin, c.end);
        EXPECT_EQ(contents(*map), c.after);
    }
}

TEST(ModuleMapGrowth, ReallocationKeepsTheActiveHalfAndItsEntries) {
    MapPtr map = newMap();
    insert(*map, 10, 20, L"a");
    insert(*map, 30, 40, L"b");  // the second half is active now
    std::vector<Entry> const before = contents(*map);
    ASSERT_EQ(norvane_1::reallocateStorage(map.get()), 1);
    EXPECT_EQ(map->capacity, 8192u);
    EXPECT_EQ(map->ranges, map->storage + 8192);
    EXPECT_EQ(contents(*map), before);
    insert(*map, 50, 60, L"c");  // and the first half still holds a usable former list
    EXPECT_EQ(map->ranges, map->storage);
    EXPECT_EQ(map->count, 3u);
}

}  // namespace
}  // namespace norvane_test
