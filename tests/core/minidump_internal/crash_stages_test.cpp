// The crash's stages: the owner's own faults, and the remove step never
// tearing down under a crash in progress. Threads faulting together (one
// owner, one report) are crashed on in tests/crash (TwoThreadsFaulting...,
// twenty-threads, sleeping-threads).
#include "minidump_internal/crash_stages.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using norvane_1::Arrival;
using norvane_1::CrashStage;
using norvane_1::CrashStages;

class CrashStagesTest : public ::testing::Test {
protected:
    CrashStages stages;

    void SetUp() override { ASSERT_EQ(stages.stage(), CrashStage::idle); }
    // Whatever a test left, back to idle the way the library gets there.
    void TearDown() override {
        if (stages.stage() == CrashStage::removing) stages.endRemoval();
        stages.leaveCallback();
        stages.handedOver();
        stages.decide(true);
        stages.returnToIdleAfterPassedOn();
        EXPECT_EQ(stages.stage(), CrashStage::idle);
    }
};

TEST_F(CrashStagesTest, TheOwnerFaultingInTheCallbackGoesOnOnceAndAThirdFaultIsPassedOn) {
    ASSERT_EQ(stages.arrive(7), Arrival::owner);
    stages.enterCallback();
    EXPECT_EQ(stages.arrive(8), Arrival::latecomer);
    EXPECT_EQ(stages.arrive(7), Arrival::faultInCallback);
    EXPECT_EQ(stages.stage(), CrashStage::preparing);
    EXPECT_EQ(stages.arrive(7), Arrival::reentry);
    EXPECT_EQ(stages.owner(), 7u);
}

// A remove step and a fault at the same moment: either the remove step
// claims first and the fault is passed on, or the fault claims first and
// the remove step waits until the crash is decided.
TEST_F(CrashStagesTest, ARemoveStepRacingAFaultNeverTearsDownUnderTheCrash) {
    for (int round = 0; round < 40; ++round) {
        std::atomic<bool> go{false};
        Arrival arrival{};
        CrashStages::Removal removal{};
        std::thread fault([&] {
            while (!go) std::this_thread::yield();
            arrival = stages.arrive(42);
            if (arrival == Arrival::owner) {
                stages.handedOver();
                stages.decide(true);
            }
        });
        std::thread remove([&] {
            while (!go) std::this_thread::yield();
            removal = stages.claimForRemoval(false, false);
            if (removal == CrashStages::Removal::claimed) {
                EXPECT_EQ(stages.stage(), CrashStage::removing);
                stages.endRemoval();
            }
        });
        go = true;
        fault.join();
        remove.join();
        if (arrival == Arrival::owner) {
            EXPECT_NE(removal, CrashStages::Removal::refused);
            stages.returnToIdleAfterPassedOn();
        } else {
            EXPECT_EQ(arrival, Arrival::duringRemoval);
            EXPECT_EQ(removal, CrashStages::Removal::claimed);
        }
        ASSERT_EQ(stages.stage(), CrashStage::idle) << "round " << round;
    }
}

}  // namespace
