// Closing a process on Linux: the polite signal, the 2 s of grace, the kill,
// and what counts as alive.
#include <norvane_1/os_layer.h>

#include "child_process.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

norvane_test::ChildOptions shell(char const* script) {
    norvane_test::ChildOptions options;
    options.program = "/bin/sh";
    options.arguments = {"-c", script};
    return options;
}

// A shell needs a moment to set its trap before it can ignore the signal.
void letItStart() { std::this_thread::sleep_for(std::chrono::milliseconds(200)); }

TEST(CloseProcess, APoliteProcessEndsOnTheSignalAndAStubbornOneIsKilled) {
    norvane_test::ChildProcess polite(shell("exec sleep 30"));
    letItStart();
    auto const politeStart = Clock::now();
    norvane_1::os_layer::closeProcess(polite.pid());
    EXPECT_LT(Clock::now() - politeStart, std::chrono::milliseconds(1500));
    EXPECT_EQ(polite.wait(std::chrono::seconds(5)).signal, SIGTERM);

    norvane_test::ChildProcess stubborn(shell("trap '' TERM; exec sleep 30"));
    letItStart();
    auto const stubbornStart = Clock::now();
    norvane_1::os_layer::closeProcess(stubborn.pid());
    EXPECT_GE(Clock::now() - stubbornStart, std::chrono::milliseconds(1900));
    EXPECT_EQ(stubborn.wait(std::chrono::seconds(5)).signal, SIGKILL);
}

// A child that has ended but not been reaped is not alive, and closing it
// (or 0) does nothing and returns at once.
TEST(CloseProcess, AnEndedProcessIsLeftAlone) {
    norvane_test::ChildProcess ended(shell("exit 0"));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_FALSE(norvane_1::os_layer::isProcessAlive(ended.pid()));
    auto const start = Clock::now();
    norvane_1::os_layer::closeProcess(ended.pid());
    norvane_1::os_layer::closeProcess(0);
    EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(500));
    EXPECT_TRUE(ended.wait(std::chrono::seconds(5)).exited);
    EXPECT_FALSE(norvane_1::os_layer::isProcessAlive(0));
}

}  // namespace
