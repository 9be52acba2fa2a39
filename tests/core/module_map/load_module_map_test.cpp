// Module enumeration. This process's map, its bases and names, is what the
// in-process crash tests take each frame back to its file through
// (check_stack_chain.sh, stack_report_test.cpp); another process's modules
// are read by the handler from outside (on_demand_test.cpp).
#include "map_testing.h"

#include <gtest/gtest.h>

namespace norvane_test {
namespace {

TEST(LoadModuleMap, AProcessThatCannotBeOpenedGivesZeroAndNoChange) {
    MapPtr map = newMap();
    EXPECT_EQ(norvane_1::loadModuleMap(map.get(), 0x7FFFFFF0ul), 0);
    EXPECT_EQ(map->count, 0u);
}

}  // namespace
}  // namespace norvane_test
