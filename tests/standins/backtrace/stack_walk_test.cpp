// Walking a stack: a test finds its own callers, and walks over stacks that
// hold garbage end without a fault. A stack that can't be read is crashed
// on in tests/crash/stack_report_test.cpp (DamagedStacks).
#include <backtrace/bt_helper.h>

#include <norvane_1/module_map.h>

#include "module_map_ptr.h"
#include "own_registers.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using norvane_test::MapPtr;
using norvane_test::withOwnRegisters;

constexpr int kBits64 = 2;

MapPtr thisProcessModules() {
    MapPtr map = norvane_test::newMap();
    if (map) norvane_1::loadModuleMap(map.get(), 0);
    return map;
}

// A helper told of this process's modules.
gavrel2::sptr_t<bt::IBtHelper> helperFor(norvane_1::MinidumpModuleMap const& map) {
    gavrel2::sptr_t<bt::IBtHelper> helper = bt::createBtHelper();
    helper->prepare(0);
    for (std::uint32_t i = 0; i < map.count; ++i) {
        helper->createModule()->describe(map.ranges[i].base, map.ranges[i].end, 0, map.ranges[i].name, 1);
    }
    return helper;
}

// Return addresses of the chain below, innermost first.
std::vector<std::uint64_t> g_returns;
norvane_1::CleanStack g_frames;
volatile int g_sink = 0;

#define RECORD_RETURN() \
    g_returns.insert(g_returns.begin(), reinterpret_cast<std::uint64_t>(__builtin_return_address(0)))

__attribute__((noinline)) void walkHere() {
    RECORD_RETURN();
    withOwnRegisters([](norvane_1::Context const& registers, std::uint64_t returnAddress) {
        g_returns.insert(g_returns.begin(), returnAddress);
        MapPtr const map = thisProcessModules();
        ASSERT_TRUE(map);
        auto helper = helperFor(*map);
        ASSERT_TRUE(helper->isReady());
        EXPECT_TRUE(helper->walkStack(kBits64, registers, norvane_1::RawStack(), g_frames));
    });
    g_sink = 3;
}

__attribute__((noinline)) void caller() {
    RECORD_RETURN();
    walkHere();
    g_sink = 1;
}

TEST(StackWalk, FindsItsOwnCallersInOrder) {
    g_returns.clear();
    g_frames.clear();
    caller();
    ASSERT_EQ(g_returns.size(), 3u);  // into walkHere, caller, this test
    ASSERT_GE(g_frames.size(), g_returns.size());
    for (std::size_t i = 0; i < g_returns.size(); ++i) {
        EXPECT_EQ(g_frames[i].address, g_returns[i]) << "frame " << i;
        EXPECT_EQ(g_frames[i].kind, bt::kFrameUnwound) << "frame " << i;
        EXPECT_FALSE(g_frames[i].module.empty()) << "frame " << i;
        if (i > 0) {
            EXPECT_GT(g_frames[i].stackAddress, g_frames[i - 1].stackAddress);
        }
    }
}

// Garbage of every kind under the stack pointer, code addresses of this
// process's modules among it, and a scan that took all of it for return
// addresses: the walk ends, without a fault, with frames that rise.
TEST(StackWalk, GarbageOnTheStackNeverMakesTheWalkFault) {
    MapPtr const map = thisProcessModules();
    ASSERT_TRUE(map && map->count > 0);
    auto helper = helperFor(*map);
    std::mt19937_64 random(20261123);
    auto anyCode = [&] {
        norvane_1::MinidumpAddressRange const& range = map->ranges[random() % map->count];
        return range.begin + random() % (range.end - range.begin);
    };
    withOwnRegisters([&](norvane_1::Context const& own, std::uint64_t) {
        std::vector<std::uint64_t> garbage(512);
        auto const stack = reinterpret_cast<std::uint64_t>(garbage.data());
        for (int attempt = 0; attempt < 100; ++attempt) {
            norvane_1::RawStack scanned;
            for (std::uint64_t& word : garbage) {
                std::uint64_t const kinds[] = {random(), anyCode(), stack + random() % 4096, random() % 256};
                word = kinds[random() % 4];
                scanned[reinterpret_cast<std::uint64_t>(&word)] = word;
            }
            norvane_1::Context registers = own;
            registers.EIP = anyCode();
            registers.ESP = stack + 8 * (random() % 64);
            registers.EBP = random() % 2 ? random() : stack + random() % 4096;
            norvane_1::CleanStack frames;
            helper->walkStack(kBits64, registers, scanned, frames);
            // Every frame stands higher on the stack than the one before.
            for (std::size_t i = 1; i < frames.size(); ++i) {
                ASSERT_GT(frames[i].stackAddress, frames[i - 1].stackAddress);
            }
        }
    });
}

}  // namespace
