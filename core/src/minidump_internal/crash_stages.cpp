// The crash's stages: see the table in crash_stages.h. Portable code only.
#include "crash_stages.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace norvane_1 {
namespace {

// Stage and owner in one word, so that both change together.
std::atomic<std::uint64_t> g_word{0};

constexpr std::uint64_t word(CrashStage stage, std::uint32_t owner) {
    return static_cast<std::uint64_t>(stage) << 32 | owner;
}
constexpr CrashStage stageOf(std::uint64_t value) { return static_cast<CrashStage>(value >> 32); }
constexpr std::uint32_t ownerOf(std::uint64_t value) { return static_cast<std::uint32_t>(value); }

// From `from` (with whatever owner) to `to`, keeping the owner; false when
// the stage was another.
bool move(CrashStage from, CrashStage to) {
    std::uint64_t current = g_word.load();
    while (stageOf(current) == from) {
        if (g_word.compare_exchange_weak(current, word(to, ownerOf(current)))) return true;
    }
    return false;
}

constexpr auto kHoldPoll = std::chrono::milliseconds(50);

}  // namespace

Arrival CrashStages::arrive(std::uint32_t threadId) {
    std::uint64_t current = word(CrashStage::idle, 0);
    if (g_word.compare_exchange_strong(current, word(CrashStage::preparing, threadId))) return Arrival::owner;
    CrashStage const stage = stageOf(current);
    if (stage == CrashStage::removing) return Arrival::duringRemoval;
    if (ownerOf(current) != threadId) return Arrival::latecomer;
    if (stage == CrashStage::inCallback && move(CrashStage::inCallback, CrashStage::preparing)) {
        return Arrival::faultInCallback;
    }
    return Arrival::reentry;
}

void CrashStages::enterCallback() { move(CrashStage::preparing, CrashStage::inCallback); }
void CrashStages::leaveCallback() { move(CrashStage::inCallback, CrashStage::preparing); }
void CrashStages::handedOver() { move(CrashStage::preparing, CrashStage::handedOver); }
void CrashStages::decide(bool passedOn) {
    move(CrashStage::handedOver, passedOn ? CrashStage::passedOn : CrashStage::ending);
}

CrashStage CrashStages::stage() const { return stageOf(g_word.load()); }
std::uint32_t CrashStages::owner() const { return ownerOf(g_word.load()); }

bool CrashStages::inProgress() const {
    CrashStage const now = stage();
    return now != CrashStage::idle && now != CrashStage::removing && now != CrashStage::passedOn;
}

void CrashStages::holdUntilDecided(std::uint32_t threadId) const {
    if (owner() == threadId) return;
    while (inProgress()) std::this_thread::sleep_for(kHoldPoll);
}

void CrashStages::returnToIdleAfterPassedOn() {
    std::uint64_t current = g_word.load();
    if (stageOf(current) == CrashStage::passedOn) g_word.compare_exchange_strong(current, word(CrashStage::idle, 0));
}

CrashStages::Removal CrashStages::claimForRemoval(bool fromTheCrash, bool processExiting) {
    for (;;) {
        std::uint64_t current = word(CrashStage::idle, 0);
        if (g_word.compare_exchange_strong(current, word(CrashStage::removing, 0))) return Removal::claimed;
        CrashStage const stage = stageOf(current);
        // A crash that was passed on is over: its hooks are off and its
        // worker has ended. At process exit the crash's threads are gone or
        // going, so it will never be decided.
        if (stage == CrashStage::passedOn || (stage != CrashStage::removing && processExiting)) {
            return Removal::nothingToWaitFor;
        }
        if (stage != CrashStage::removing && fromTheCrash) return Removal::refused;
        if (stage == CrashStage::removing) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));  // another remove step
        } else {
            std::this_thread::sleep_for(kHoldPoll);  // the crash decides, or ends the process
        }
    }
}

void CrashStages::endRemoval() { move(CrashStage::removing, CrashStage::idle); }

}  // namespace norvane_1
