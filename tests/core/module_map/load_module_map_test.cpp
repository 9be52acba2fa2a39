// Module enumeration of this process, checked against the list of the
// platform's own loader. Another process's modules are read by the handler
// from outside in the crash tests (stack_report_test.cpp, on_demand_test.cpp).
#include "loaded_modules.h"
#include "map_testing.h"

#include <vantix_2_18/utf.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace norvane_test {
namespace {

bool sameFile(std::wstring const& mapName, std::string const& path) {
    std::error_code error;
    return std::filesystem::equivalent(std::filesystem::path(mapName),
                                       std::filesystem::u8path(path), error);
}

// Every module with code is there, under its base and name, and every
// entry lies inside the image of its module.
void expectAgreement(norvane_1::MinidumpModuleMap const& map, std::vector<LoadedModule> const& modules) {
    ASSERT_FALSE(modules.empty());
    for (LoadedModule const& module : modules) {
        if (!module.hasCode) continue;
        bool found = false;
        for (std::uint32_t i = 0; i < map.count && !found; ++i) found = map.ranges[i].base == module.base;
        EXPECT_TRUE(found) << module.path << " at " << std::hex << module.base;
    }
    for (std::uint32_t i = 0; i < map.count; ++i) {
        auto const& range = map.ranges[i];
        std::string const name = VANTIX_2_18::utf::to_utf8(range.name ? range.name : L"");
        auto module = std::find_if(modules.begin(), modules.end(),
                                   [&](LoadedModule const& m) { return m.base == range.base; });
        ASSERT_NE(module, modules.end()) << name << " at " << std::hex << range.base;
        EXPECT_TRUE(sameFile(range.name, module->path)) << name << " is not " << module->path;
        EXPECT_GE(range.begin, module->base) << name;
        EXPECT_LE(range.end, module->base + module->size) << name;
        EXPECT_LT(range.begin, range.end) << name;
    }
}

TEST(LoadModuleMap, OwnProcessAgreesWithTheLoader) {
    MapPtr map = newMap();
    ASSERT_EQ(norvane_1::loadModuleMap(map.get(), 0), 1);
    expectAgreement(*map, listLoadedModules());
}

TEST(LoadModuleMap, AProcessThatCannotBeOpenedGivesZeroAndNoChange) {
    MapPtr map = newMap();
    EXPECT_EQ(norvane_1::loadModuleMap(map.get(), 0x7FFFFFF0ul), 0);
    EXPECT_EQ(map->count, 0u);
}

}  // namespace
}  // namespace norvane_test
