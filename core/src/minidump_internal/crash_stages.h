// Where the process stands with a crash: one state, with its owner, for the
// crashed thread, the threads that fault after it, the remove step and the
// install step. Portable code only.
//
//  stage        what is going on                    way out
//  -----------  ----------------------------------  ---------------------------------------
//  idle         no crash                            a fault claims it: preparing
//                                                   the remove step: removing
//  preparing    the owner runs the steps up to the  the shutdown callback: inCallback
//               hand-over                           the hand-over: handedOver
//  inCallback   the owner is in the host's          the callback returns: preparing
//               shutdown callback                   the callback faults: preparing, and the
//                                                   steps go on in the nested call
//  handedOver   the worker runs, the owner sleeps   the worker's result: ending or passedOn
//  ending       the process ends, exit code 3       none
//  passedOn     the crash went the system's way     the install step: idle
//  removing     the remove step tears down          its end: idle
//
// Every change is one compare-and-swap on one word, so each thread reads and
// writes the state with no lock, inside a signal handler too. The owner is
// the thread id of the crashed thread (on Windows, after a stack overflow,
// of the thread whose stack is gone, not of the one that runs the steps).
#pragma once

#include <cstdint>

namespace norvane_1 {

enum class CrashStage : std::uint32_t { idle, preparing, inCallback, handedOver, ending, passedOn, removing };

// What a thread that enters the crash path is to do.
enum class Arrival {
    owner,            // it owns the crash now: run the steps
    faultInCallback,  // the owner faulted inside the shutdown callback: go on with the steps here
    reentry,          // the owner faulted again elsewhere: pass it on
    latecomer,        // another thread owns the crash: hold until it is decided
    duringRemoval,    // the remove step is tearing down: pass it on
};

class CrashStages {
public:
    // All of these are async-signal-safe.
    Arrival arrive(std::uint32_t threadId);
    void enterCallback();
    void leaveCallback();
    void handedOver();
    void decide(bool passedOn);
    CrashStage stage() const;
    std::uint32_t owner() const;
    // A crash is under way: from the claim until it was passed on.
    bool inProgress() const;
    // Sleeps (not spins) until the crash was passed on; returns at once for
    // the owner. A crash that ends the process never returns from here.
    void holdUntilDecided(std::uint32_t threadId) const;

    // Install step: after a crash that was passed on, handling starts over.
    void returnToIdleAfterPassedOn();
    // Remove step: true when it may tear down (it then holds the state until
    // endRemoval); false when a crash that will never be decided is left
    // alone (passed on, or at process exit). `fromTheCrash` is true when the
    // caller serves the crash: it is refused at once.
    enum class Removal { claimed, nothingToWaitFor, refused };
    Removal claimForRemoval(bool fromTheCrash, bool processExiting);
    void endRemoval();
};

}  // namespace norvane_1
