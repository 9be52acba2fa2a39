// The crashed thread's path: dumpMiniDump. Portable code only; the platform
// layer brings crashes here (the unhandled-exception filter and the software
// exceptions for abort and pure calls on Windows, signal handlers on Linux).
//
// How the crashed thread and the worker divide the work
// -----------------------------------------------------
// A crashed thread is a bad place to work: its stack may be nearly used up,
// the fault may have left locks held and data half-written, and on Linux it
// runs inside a signal handler. So it does as little as it can, in a fixed
// order, and hands everything else to the worker thread that HandlerState
// started long before the crash, when the process was healthy:
//
//  - It first takes the hooks away (after stopping the upkeep thread, which
//    would otherwise put them back within a second) and puts the late-fault
//    hooks in their place. From then on a second fault never recurses into
//    this path: see below for what becomes of it.
//  - It copies the exception data into the state: the record and the
//    register context live on the crashed thread's stack, which must stay
//    untouched while the worker reads the copies.
//  - It builds the first report (only the "Process" section) and sets both
//    hand-over flags under the worker mutex, then sleeps on the condition
//    with no time limit. The crashed thread stays parked, so its stack and
//    registers stay as they were for anyone who looks at them from outside.
//  - The worker fills DumpInfo and the register context, exports
//    "crash_info.txt", starts the handler process and waits for it, stores
//    its exit code and clears the flags. Waking, the crashed thread ends the
//    process with exit code 3, or, if the handler said "not our exception"
//    (exit code 6), returns so that the system's own handling goes on.
//
// Several threads may fault at once. The first one to arrive owns the
// crash; any other is held until the first has decided, and then follows its
// decision: when the process ends, they end with it, and when the crash is
// passed on, they pass theirs on too. A thread that faults before the hooks
// are off is held here; one that faults after it is held by the late-fault
// hooks that stand in their place, which do nothing but hold. A fault of the
// owning thread, of the worker or of the task service's thread is passed on
// at once: it ends the process the system's way, with no further report,
// and no thread waits for itself.
//
// The task service runs from step 5 to step 19: while the worker waits for
// the handler process, that process may ask over it for the stack to be
// collected here, and the service's thread does that and rewrites the
// report.
// The same holds for a fault while the remove step tears the state down.
//
// Ordinary work is still done here (allocation, wide streams, the creation
// log, the logger): a crash that struck while its thread held the heap's or
// the logger's lock can block this path. The way to the hand-over therefore
// has a deadline where the platform can keep one (an alarm on Linux): past
// it the process ends with exit code 3 and no report, instead of hanging.
#include <norvane_1/crash_handling.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/minidump_task.h>

#include "crash_filter.h"
#include "filter_upkeep.h"
#include "logging/logging.h"
#include "platform.h"
#include "process_globals.h"

#include <boost/thread.hpp>

#include <atomic>
#include <chrono>
#include <thread>

namespace norvane_1 {
namespace {

constexpr char kFilterLabel[] = "norvane_1::dumpMiniDump";
constexpr int kNotOurException = 6;

void record(wchar_t const* text) {
    NORVANE_LOG_INFO(log::platformLogger(), text);
    addCreationLogRecord(kFilterLabel, text, nullptr);
}

// The owner of the crash, and what it decided once it has. While the remove
// step runs, the owner is kRemoval: no thread id on either platform.
constexpr std::uint32_t kRemoval = 0xffffffffu;
std::atomic<std::uint32_t> g_crashOwner{0};
std::atomic<bool> g_crashPassedOn{false};

enum class Arrival { owner, reentry, latecomer, duringRemoval };

Arrival arrive(std::uint32_t threadId) {
    std::uint32_t expected = 0;
    if (g_crashOwner.compare_exchange_strong(expected, threadId)) return Arrival::owner;
    if (expected == kRemoval) return Arrival::duringRemoval;
    return expected == threadId ? Arrival::reentry : Arrival::latecomer;
}

// The owner, the worker and the task service's thread: a fault of one of
// them can't wait for the crash to be decided, since the crash waits for it.
bool servesTheCrash(std::uint32_t threadId) {
    return threadId == g_crashOwner ||
           (threadId != 0 && (threadId == g_workerThreadId || threadId == g_serviceThreadId));
}

// A filter needs a worker to wake. The install step starts it; a direct
// runExceptionHandler without it must not wait forever.
void ensureWorker(HandlerState& state) {
    boost::lock_guard<boost::mutex> guard(state.getMutex());
    if (!state.isInitialized()) state.init();
}

}  // namespace

void holdLateFault() {
    if (servesTheCrash(platform::currentThreadId())) return;
    while (!g_crashPassedOn) std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

void returnToIdleAfterPassedOnCrash() {
    if (!g_crashPassedOn) return;
    std::uint32_t owner = g_crashOwner;
    // The owner has returned from dumpMiniDump long before the host installs
    // again; only a concurrent remove step may hold the owner meanwhile.
    if (owner != kRemoval && g_crashOwner.compare_exchange_strong(owner, 0)) g_crashPassedOn = false;
}

bool crashInProgress() {
    std::uint32_t const owner = g_crashOwner;
    return owner != 0 && owner != kRemoval && !g_crashPassedOn;
}

CrashHandlingRemoval::CrashHandlingRemoval() {
    for (;;) {
        std::uint32_t expected = 0;
        if (g_crashOwner.compare_exchange_strong(expected, kRemoval)) {
            m_claimed = true;
            return;
        }
        // A crash that was passed on is over: its hooks are off and its
        // worker has ended, so there is nothing left to wait for. Nor is
        // there at process exit: on Windows the system has ended the crash's
        // threads before the library is detached, so it will never be decided.
        if (expected != kRemoval && (g_crashPassedOn || g_processExiting)) return;
        if (expected != kRemoval && servesTheCrash(platform::currentThreadId())) {
            m_refused = true;
            return;
        }
        if (expected == kRemoval) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));  // another remove step
        } else {
            holdLateFault();
        }
    }
}

CrashHandlingRemoval::~CrashHandlingRemoval() {
    if (m_claimed) g_crashOwner = 0;
}

long dumpMiniDump(ExceptionData* data) {
    // 1. A process on its way out handles nothing.
    if (g_processExiting) {
        NORVANE_LOG_INFO(log::platformLogger(), L"Didn't process exception while exiting...");
        return kContinueSearch;
    }
    // The worker and the task service can't hand a crash to themselves:
    // their own faults are passed on.
    std::uint32_t const threadId = platform::currentThreadId();
    if (threadId == g_workerThreadId || threadId == g_serviceThreadId) return kContinueSearch;
    switch (arrive(threadId)) {
        case Arrival::owner: break;
        case Arrival::reentry: return kContinueSearch;
        case Arrival::latecomer: holdLateFault(); return kContinueSearch;
        case Arrival::duringRemoval: return kContinueSearch;
    }
    platform::armHandOverDeadline();

    // 2.-4. Stop the upkeep thread first, or it would set the hooks again;
    // then take them off. The late-fault hooks replace them hook by hook:
    // were the hooks first removed, a second thread faulting in between
    // would end the process before the report is written.
    NORVANE_LOG_INFO(log::platformLogger(), L"Started exception handling in crashed thread...");
    stopFilterUpkeep();
    platform::setLateFaultHooks();

    // 5. The task service, for the handler process to call back.
    startExecuteMinidumpTaskthread();
    // 6. No fault dialog of the system while the crash is handled.
    platform::suppressFaultDialogs();

    // 7. The host's GUI freeze guard goes first.
    HandlerState* state = HandlerState::get();
    state->useGFGCallback();
    NORVANE_LOG_INFO(log::platformLogger(), L"Shutdown GUI Freeze Guard Service...");
    ensureWorker(*state);

    // 8.-13. Prepare the hand-over under the worker mutex.
    state->getLock().lock();
    ProblemReportStorage report;
    addCreationLogRecord(kFilterLabel, L"Exception report initialized", nullptr);
    report.setSection(L"Process", getProcessMemInfo(0));
    record(L"Process section is set up in crash report");
    state->setProblemReportStorage(report);
    platform::saveExceptionData(*state, data, platform::currentProcessId(), threadId);
    addCreationLogRecord(kFilterLabel, L"Set crash pid, tid", nullptr);

    // 14.-16. Hand over to the worker.
    state->setRunStatus(true);
    state->setExitStatus(true);
    state->getLock().unlock();
    state->getCondition().notify_one();
    platform::disarmHandOverDeadline();
    record(L"Exception handling will now continue in worker thread...");

    // 17.-18. Sleep until the worker has ended.
    state->getLock().lock();
    while (state->getExitStatus()) state->getCondition().wait(state->getLock());
    state->getLock().unlock();
    NORVANE_LOG_INFO(log::platformLogger(), L"Crash handler executed, terminate.");

    // 19. The handler process has ended: so has its use of the service.
    stopExecuteMinidumpTaskThread();
    // 20. The handler process found the exception not to be the product's.
    if (state->getExitCode() == kNotOurException) {
        NORVANE_LOG_INFO(log::platformLogger(), L"Not our exception.");
        platform::restoreFaultDialogs();
        g_crashPassedOn = true;
        platform::resetProcessHooks();
        return kContinueSearch;
    }
    // 21. Every other outcome ends the process with exit code 3.
    platform::endCrashedProcess();
    return kExecuteHandler;
}

}  // namespace norvane_1
