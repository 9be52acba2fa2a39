// The crash filter: where every crash enters crash handling. Portable code only.
#pragma once

#include <norvane_1/exception_data.h>

#include <cstdint>

namespace norvane_1 {

// Filter results, as the system's unhandled-exception filter knows them.
constexpr long kContinueSearch = 0;
constexpr long kExecuteHandler = 1;

// Runs on the crashed thread: hands the crash to the worker, waits for it
// and ends the process with exit code 3, or returns kContinueSearch when the
// handler process says the exception isn't the product's.
long dumpMiniDump(ExceptionData* data);
// The same on behalf of thread `crashedThreadId`, parked meanwhile, whose
// own stack can't carry the steps (a stack overflow on Windows).
long dumpMiniDumpFor(ExceptionData* data, std::uint32_t crashedThreadId);

// The late-fault hooks' way in: the owner's fault inside the shutdown
// callback goes on to dumpMiniDump, which carries the first crash on; any
// other is held as holdLateFault holds it, and then passed on.
long lateFault(ExceptionData* data);

// The host's shutdown callback called exit, whose clean-up has reached the
// handler object: the crash goes on from here, with the worker still alive,
// and the process ends with exit code 3 (or exit goes on, when the crash is
// passed on). Anywhere else it does nothing.
void carryOnCrashLeftByExit();

// For a fault that comes while a crash is handled. A thread that serves the
// crash (its owner, the worker) returns at once, so that its fault ends the
// process the system's way; any other thread waits until the crash has been
// decided, which is forever when the process is ended with exit code 3.
void holdLateFault();

// After a crash that was passed on (the handler said "not our exception"
// and the process lived on, as after runExceptionHandler), the install step
// makes crash handling idle again, so the next crash is handled as the
// first was. Nothing happens in any other state.
void returnToIdleAfterPassedOnCrash();

// Whether a crash has begun and is not yet decided: at process exit, its
// threads have been ended wherever they were.
bool crashInProgress();

// Held by the remove step while it takes crash handling down. Taking it
// waits until a crash already in progress has been decided (forever when
// that crash ends the process), except at process exit, when the crash's
// threads may be gone. While it is held, a fault on any thread is
// passed on at once: the state it would need is being torn down.
//
// A thread that serves the crash in progress (its owner, in the shutdown
// callback say, or the worker) would wait for itself: it gets the removal
// refused at once instead, and the crash goes on as if it had not asked.
class CrashHandlingRemoval {
public:
    CrashHandlingRemoval();
    ~CrashHandlingRemoval();
    CrashHandlingRemoval(CrashHandlingRemoval const&) = delete;
    CrashHandlingRemoval& operator=(CrashHandlingRemoval const&) = delete;

    bool refused() const { return m_refused; }

private:
    bool m_claimed = false;
    bool m_refused = false;
};

}  // namespace norvane_1
