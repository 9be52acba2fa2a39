// The worker thread: a fault of its own, and the app properties. A crash
// handed over to the worker, once, is in every crash test's report
// (TwoThreadsFaulting... counts the hand-overs).
#include <norvane_1/handler_state.h>

#include "plain_handler_state.h"

#include "minidump_internal/crash_filter.h"
#include "test_environment.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

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
};

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
    state.handOverCrash([] {});
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
