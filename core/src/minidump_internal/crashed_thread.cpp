// The crashed thread's path: dumpMiniDump. Portable code only; the platform
// layer brings crashes here (the unhandled-exception filter and the software
// exceptions for abort and pure calls on Windows, signal handlers on Linux).
//
// How the crashed thread and the worker divide the work
// -----------------------------------------------------
// A crashed thread is a bad place to work: its stack may be used up, the
// fault may have left locks held and data half-written, and on Linux it runs
// inside a signal handler. So it does as little as it can, in a fixed order,
// and hands everything else to the worker thread that HandlerState started
// long before the crash, when the process was healthy. Where the process
// stands with the crash is one state, the crash's stage (crash_stages.h,
// with its table), which every thread that enters here reads first.
//
// Several threads may fault at once. The first one to arrive owns the
// crash; any other is held until the first has decided, and then follows its
// decision: when the process ends, they end with it, and when the crash is
// passed on, they pass theirs on too. A thread that faults before the hooks
// are off is held here; one that faults after it is held by the late-fault
// hooks that stand in their place, which do nothing but hold. A fault of the
// owning thread, of the worker or of the task service's thread is passed on
// at once: it ends the process the system's way, with no further report,
// and no thread waits for itself; with one exception: a fault of the owner
// inside the host's shutdown callback abandons the callback, and the steps
// go on in the nested call, so the first crash is still reported; an exit()
// there carries the crash on from the exit's clean-up. The same
// holds for a fault while the remove step tears the state down.
//
// The task service runs from step 5 to step 19: while the worker waits for
// the handler process, that process may ask over it for the stack to be
// collected here, and the service's thread does that and rewrites the
// report.
//
// What the crashed thread does before the hand-over, in order
// ------------------------------------------------------------
// Marked [safe] where it is async-signal-safe, [not safe] where it isn't.
//  - claims the crash: one compare-and-swap [safe]; arms the time budget
//    [safe: an interval timer on Linux, an event on Windows];
//  - stops the upkeep thread: a mutex, a notification and a join [not safe:
//    the upkeep thread takes no lock the crash could hold but its own];
//  - sets the late-fault hooks: sigaction / SetUnhandledExceptionFilter
//    [safe];
//  - starts the task service: a thread and allocations [not safe]; the
//    service's thread makes its socket or pipe meanwhile;
//  - lets a fault or an exit() of the callback back into the crash path:
//    unblocks the crash signals on Linux [safe]; on Windows, once, enters
//    itself in the run-time library's exit list [not safe: its lock];
//  - calls the host's shutdown callback [whatever the host does];
//  - logs through the logger and appends creation-log records: the
//    logger's lock, allocations, opening and closing the creation log
//    [not safe];
//  - builds the first report section: reads this process's memory figures
//    (a /proc file on Linux), allocations [not safe];
//  - copies the exception data into the state under the worker mutex
//    [not safe: a mutex].
// What isn't safe is accepted because each step is ordinary work that the
// crash path needs before the hand-over and that almost always succeeds; the rare crash that
// struck while its thread held one of those locks (the heap's, the
// logger's) would block this path for good, so the budget bounds the whole
// way from the fault to the handler's start: past it the process ends with
// exit code 3 and a line on standard error, with whatever report is on
// disk, instead of hanging.
#include <norvane_1/crash_handling.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/minidump_task.h>

#include "crash_filter.h"
#include "crash_stages.h"
#include "filter_upkeep.h"
#include "logging/logging.h"
#include "platform.h"
#include "process_globals.h"
#include "task_service.h"

#include <boost/thread.hpp>

namespace norvane_1 {
namespace {

constexpr char kFilterLabel[] = "norvane_1::dumpMiniDump";
constexpr int kNotOurException = 6;

void record(wchar_t const* text) {
    NORVANE_LOG_INFO(log::platformLogger(), text);
    addCreationLogRecord(kFilterLabel, text, nullptr);
}

CrashStages& stages() { return HandlerState::crashStages(); }

// The owner, the worker and the task service's thread: a fault of one of
// them can't wait for the crash to be decided, since the crash waits for it.
bool servesTheCrash(std::uint32_t threadId) {
    return threadId == stages().owner() ||
           (threadId != 0 && (threadId == g_workerThreadId || threadId == g_serviceThreadId));
}

// A filter needs a worker to wake. The install step starts it; a direct
// runExceptionHandler without it must not wait forever.
void ensureWorker(HandlerState& state) {
    boost::lock_guard<boost::mutex> guard(state.getMutex());
    if (!state.isInitialized()) state.init();
}

// The first fault's data, for the steps to go on with should the shutdown
// callback fault: the record and context it points at lie on the crashed
// thread's stack below the nested call, untouched.
ExceptionData* g_ownersData = nullptr;

// 8.-21.: from the first report to the decision.
long handOverAndDecide(ExceptionData* data, std::uint32_t threadId) {
    HandlerState* state = HandlerState::get();
    ensureWorker(*state);

    // 8.-16. Prepare the hand-over under the worker mutex, then hand over.
    state->handOverCrash([&] {
        ProblemReportStorage report;
        addCreationLogRecord(kFilterLabel, L"Exception report initialized", nullptr);
        report.setSection(L"Process", getProcessMemInfo(0));
        record(L"Process section is set up in crash report");
        state->setProblemReportStorage(report);
        platform::saveExceptionData(*state, data, platform::currentProcessId(), threadId);
        addCreationLogRecord(kFilterLabel, L"Set crash pid, tid", nullptr);
    });
    stages().handedOver();
    record(L"Exception handling will now continue in worker thread...");

    // 17.-18. Sleep until the worker has ended.
    int const exitCode = state->awaitWorker();
    NORVANE_LOG_INFO(log::platformLogger(), L"Crash handler executed, terminate.");
    // The handler ran, or never will: the budget is over either way.
    platform::endCrashBudget();

    // 19. The handler process has ended: so has its use of the service.
    stopExecuteMinidumpTaskThread();
    // 20. The handler process found the exception not to be the product's.
    if (exitCode == kNotOurException) {
        NORVANE_LOG_INFO(log::platformLogger(), L"Not our exception.");
        platform::restoreFaultDialogs();
        platform::resetProcessHooks();
        stages().decide(true);
        return kContinueSearch;
    }
    // 21. Every other outcome ends the process with exit code 3.
    stages().decide(false);
    platform::endCrashedProcess();
    return kExecuteHandler;
}

}  // namespace

void holdLateFault() {
    std::uint32_t const threadId = platform::currentThreadId();
    if (servesTheCrash(threadId)) return;
    stages().holdUntilDecided(threadId);
}

long lateFault(ExceptionData* data) {
    if (stages().stage() == CrashStage::inCallback && stages().owner() == platform::currentThreadId()) {
        return dumpMiniDump(data);
    }
    holdLateFault();
    return kContinueSearch;
}

void carryOnCrashLeftByExit() {
    if (stages().stage() != CrashStage::inCallback || stages().owner() != platform::currentThreadId()) return;
    if (stages().arrive(stages().owner()) != Arrival::faultInCallback) return;
    record(L"The shutdown callback exits the process; the crash goes on first");
    handOverAndDecide(g_ownersData, stages().owner());
}

void returnToIdleAfterPassedOnCrash() { stages().returnToIdleAfterPassedOn(); }

bool crashInProgress() { return stages().inProgress(); }

CrashHandlingRemoval::CrashHandlingRemoval() {
    switch (stages().claimForRemoval(servesTheCrash(platform::currentThreadId()), g_processExiting)) {
        case CrashStages::Removal::claimed: m_claimed = true; break;
        case CrashStages::Removal::nothingToWaitFor: break;
        case CrashStages::Removal::refused: m_refused = true; break;
    }
}

CrashHandlingRemoval::~CrashHandlingRemoval() {
    if (m_claimed) stages().endRemoval();
}

long dumpMiniDump(ExceptionData* data) { return dumpMiniDumpFor(data, platform::currentThreadId()); }

long dumpMiniDumpFor(ExceptionData* data, std::uint32_t threadId) {
    // 1. A process on its way out handles nothing.
    if (g_processExiting) {
        NORVANE_LOG_INFO(log::platformLogger(), L"Didn't process exception while exiting...");
        return kContinueSearch;
    }
    // The worker and the task service can't hand a crash to themselves:
    // their own faults are passed on.
    std::uint32_t const runningThread = platform::currentThreadId();
    if (runningThread == g_workerThreadId || runningThread == g_serviceThreadId) return kContinueSearch;
    switch (stages().arrive(threadId)) {
        case Arrival::owner: break;
        case Arrival::faultInCallback:
            record(L"The shutdown callback faulted; it is left, and the crash goes on");
            return handOverAndDecide(g_ownersData, threadId);
        case Arrival::reentry: return kContinueSearch;
        case Arrival::latecomer: stages().holdUntilDecided(threadId); return kContinueSearch;
        case Arrival::duringRemoval: return kContinueSearch;
    }
    platform::armCrashBudget();
    g_ownersData = data;

    // 2.-4. Stop the upkeep thread first, or it would set the hooks again;
    // then take them off. The late-fault hooks replace them hook by hook:
    // were the hooks first removed, a second thread faulting in between
    // would end the process before the report is written.
    NORVANE_LOG_INFO(log::platformLogger(), L"Started exception handling in crashed thread...");
    stopFilterUpkeep();
    platform::setLateFaultHooks();

    // 5. The task service, for the handler process to call back. Its
    // thread makes its endpoint while this one goes on; the worker waits
    // for the endpoint before it starts the handler process.
    internal::startTaskServiceUnawaited();
    // 6. No fault dialog of the system while the crash is handled.
    platform::suppressFaultDialogs();

    // 7. The host's GUI freeze guard goes first. A fault inside it comes
    // back here (the crash signals are let through meanwhile on Linux).
    HandlerState* state = HandlerState::get();
    stages().enterCallback();
    platform::admitCallbackFailures();
    state->useGFGCallback();
    stages().leaveCallback();
    NORVANE_LOG_INFO(log::platformLogger(), L"Shutdown GUI Freeze Guard Service...");

    return handOverAndDecide(data, threadId);
}

}  // namespace norvane_1
