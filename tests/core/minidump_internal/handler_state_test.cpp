// The singleton state, its worker thread and the hand-over flags.
#include <norvane_1/handler_state.h>

#include "plain_handler_state.h"

#include "minidump_internal/crash_filter.h"
#include "test_environment.h"

#include <boost/thread.hpp>
#include <gtest/gtest.h>

#include <atomic>

namespace {

using norvane_1::HandlerState;
using norvane_test::ScopedVariable;

// A state whose crash work only counts its calls.
class CountingState : public norvane_test::PlainHandlerState {
public:
    bool run() override {
        ++runs;
        return true;
    }
    std::atomic<int> runs{0};
};

class HandlerStateTest : public ::testing::Test {
protected:
    norvane_test::ScratchDirectory logs{"state"};
    ScopedVariable logDirectory{"NORVANE_LOG_DIR", logs.path().string()};

    // Sets the flags as the crashed thread (or release) does, under the lock.
    static void handOver(HandlerState& state, bool run, bool exit) {
        state.getLock().lock();
        if (run) state.setRunStatus(true);
        if (exit) state.setExitStatus(true);
        state.getLock().unlock();
        state.getCondition().notify_one();
    }

    static void waitWhileRunStatus(HandlerState& state) {
        state.getLock().lock();
        while (state.getRunStatus()) state.getCondition().wait(state.getLock());
        state.getLock().unlock();
    }
};

TEST_F(HandlerStateTest, RunAloneDoesTheWorkAndTheWorkerWaitsOn) {
    CountingState state;
    ASSERT_TRUE(state.init());
    handOver(state, true, false);
    waitWhileRunStatus(state);
    EXPECT_EQ(state.runs, 1);
    handOver(state, true, false);  // the worker is still there for more
    waitWhileRunStatus(state);
    EXPECT_EQ(state.runs, 2);
    handOver(state, false, true);  // the exit flag alone ends it without more work
    state.join();
    EXPECT_FALSE(state.getExitStatus());
    EXPECT_EQ(state.runs, 2);
}

TEST_F(HandlerStateTest, BothFlagsRunOnceThenEnd) {
    CountingState state;
    ASSERT_TRUE(state.init());
    handOver(state, true, true);
    // What the crashed thread does: wait for the exit flag to fall.
    state.getLock().lock();
    while (state.getExitStatus()) state.getCondition().wait(state.getLock());
    EXPECT_FALSE(state.getRunStatus());
    state.getLock().unlock();
    state.join();
    EXPECT_EQ(state.runs, 1);
}

// The worker can't hand a crash to itself: a fault of its own is passed on
// at once instead of waiting for the worker forever.
TEST_F(HandlerStateTest, AFaultOnTheWorkerIsPassedOnAtOnce) {
    struct FaultingState : norvane_test::PlainHandlerState {
        bool run() override {
            filterResult = norvane_1::dumpMiniDump(nullptr);
            return true;
        }
        std::atomic<long> filterResult{-1};
    } state;
    ASSERT_TRUE(state.init());
    handOver(state, true, true);
    state.join();
    EXPECT_EQ(state.filterResult, norvane_1::kContinueSearch);
}

TEST_F(HandlerStateTest, EmptyPropertyValueRemovesTheProperty) {
    CountingState state;
    state.addAppProperty(L"Theme", gavrel2::variant_t(L"dark"));
    state.addAppProperty(L"Zoom", gavrel2::variant_t(2));
    state.addAppProperty(L"Theme", gavrel2::variant_t());
    state.addAppProperty(L"Missing", gavrel2::variant_t());
    auto const properties = state.getAppPropertyMap();
    ASSERT_EQ(properties.size(), 1u);
    EXPECT_EQ(properties.at(L"Zoom").as_wstring(), L"2");
}

}  // namespace
