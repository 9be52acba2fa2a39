// The upkeep thread that keeps the process hooks set, and the install,
// remove and stop steps around it. Portable code only.
//
// The hooks are set anew every second rather than once, so that a host or a
// third-party library that installs its own filter or signal handler later
// loses it to ours within a second. That pass runs for the life of the
// process, so it costs what setting the hooks costs and nothing more: no
// allocation, no lock, no clock read, and one system call to sleep, on the
// stop flag itself (platform.h), which a stop request sets and wakes at once.
#include <norvane_1/exception_handler.h>
#include <norvane_1/handler_state.h>

#include "crash_filter.h"
#include "filter_upkeep.h"
#include "logging/logging.h"
#include "platform.h"
#include "process_globals.h"
#include "uncaught_exception.h"

#include <gavrel2/environment.h>
#include <gavrel2/shared_lib.h>
#include <gavrel2/stdpaths.h>

#include <boost/thread.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <future>
#include <memory>

namespace norvane_1 {
namespace {

constexpr std::uint32_t kUpkeepPeriodMilliseconds = 1000;
constexpr int kFirstPassWaitSeconds = 5;
constexpr wchar_t kAssertLibraryName[] = L"kelmur_norvane_assert_1.19";

// Trivially destructible: it is still read when the library leaves the
// process, after static objects may have been destroyed.
std::atomic<boost::thread*> g_filterThread{nullptr};
std::atomic<std::uint32_t> g_filterThreadStop{0};
// Held while the thread is being started; see startFilterUpkeep.
boost::mutex g_filterMutex;
gavrel2::shared_lib_t g_assertLibrary;

// Tells the install step that the first pass has set the hooks.
using FirstPass = std::shared_ptr<std::promise<void>>;

class UpdateExceptionFilterThread {
public:
    UpdateExceptionFilterThread(ExceptionHandler* handler, FirstPass firstPass)
        : m_exceptionHandler(handler), m_firstPass(std::move(firstPass)) {}

    void operator()() {
        { boost::lock_guard<boost::mutex> knownToTheStopStep(g_filterMutex); }
        while (g_filterThreadStop == 0) {
            g_exceptionHandler = m_exceptionHandler;
            platform::setProcessHooks();
            if (m_firstPass) {
                m_firstPass->set_value();
                m_firstPass.reset();
            }
            platform::sleepUnlessStopped(g_filterThreadStop, kUpkeepPeriodMilliseconds);
        }
    }

private:
    ExceptionHandler* m_exceptionHandler;
    FirstPass m_firstPass;
};

// The hooks are the upkeep thread's to set. The install step waits for its
// first pass, so that a fault right after setUnhandledExceptionHandler has
// returned finds them; a thread that doesn't come round is given a few
// seconds, never forever.
void startFilterUpkeep(ExceptionHandler* handler) {
    auto firstPass = std::make_shared<std::promise<void>>();
    std::future<void> hooksSet = firstPass->get_future();
    {
        // The first pass waits for this mutex, so a fault that its hooks
        // catch finds the thread known to the stop step.
        boost::lock_guard<boost::mutex> beforeFirstPass(g_filterMutex);
        g_filterThread = new boost::thread(UpdateExceptionFilterThread(handler, firstPass));
    }
    hooksSet.wait_for(std::chrono::seconds(kFirstPassWaitSeconds));
}

using AssertionEntry = void (*)();

void callAssertionEntry(wchar_t const* name) {
    if (auto entry = reinterpret_cast<AssertionEntry>(g_assertLibrary.get_symbol(name))) entry();
}

// The product's assertion library is optional: missing file, missing entry
// point, nothing is reported.
void loadAssertionLibrary() {
    if (g_assertLibrary) return;
    g_assertLibrary.initialize(kAssertLibraryName, gavrel2::stdpaths::get_module_dir(&g_assertLibrary));
    if (g_assertLibrary) callAssertionEntry(L"norvane_1_initializeAssertions");
}

void unloadAssertionLibrary() {
    if (!g_assertLibrary) return;
    callAssertionEntry(L"norvane_1_deinitializeAssertions");
    g_assertLibrary.uninitialize();
}

// The budget of a crash up to its handler's start, from
// NORVANE_CRASH_BUDGET_MS: a whole number of milliseconds, at least 1. Any
// other value is said in the log and the default stands.
std::uint32_t crashBudgetFromEnvironment() {
    constexpr std::uint32_t kDefault = 30000;
    std::wstring const text = gavrel2::get_environ_value(L"NORVANE_CRASH_BUDGET_MS");
    if (text.empty()) return kDefault;
    std::uint64_t value = 0;
    for (wchar_t const c : text) {
        if (c < L'0' || c > L'9' || value > 86400000) {
            value = 0;
            break;
        }
        value = value * 10 + static_cast<std::uint64_t>(c - L'0');
    }
    if (value == 0 || value > 86400000) {
        NORVANE_LOG_AT(log::platformLogger(), log4cplus::WARN_LOG_LEVEL,
                       L"NORVANE_CRASH_BUDGET_MS is not a number of milliseconds from 1 to 86400000: '"
                           << text << L"'; the crash budget stays 30000 ms");
        return kDefault;
    }
    return static_cast<std::uint32_t>(value);
}

}  // namespace

bool exceptionHandlingDisabled() { return !gavrel2::get_environ_value(L"NORVANE_DISABLE_EXCEPTION_HANDLER").empty(); }

void installCrashHandling(ExceptionHandler* handler) {
    if (exceptionHandlingDisabled()) return;
    struct Installing {
        Installing() { g_installing = true; }
        ~Installing() { g_installing = false; }
    } const installing;
    returnToIdleAfterPassedOnCrash();
    HandlerState* state = HandlerState::get();
    if (state != nullptr) {
        boost::lock_guard<boost::mutex> guard(state->getMutex());
        if (!state->isInitialized()) state->init();
    }
    g_exceptionHandler = handler;
    platform::prepareCrashBudget(crashBudgetFromEnvironment());
    platform::prepareThreadsForStackOverflow();
    if (g_filterThread == nullptr) startFilterUpkeep(handler);
    internal::installTerminateHandler();
    loadAssertionLibrary();
}

void stopFilterUpkeep() {
    // Whoever takes the thread object out stops it; a second caller has
    // nothing left to do.
    boost::thread* const thread = g_filterThread.exchange(nullptr);
    if (thread == nullptr) return;
    // The thread either tests the flag before it sleeps again or is asleep
    // on it and woken: the stop takes effect at once, never a period later.
    g_filterThreadStop = 1;
    if (thread->get_id() != boost::this_thread::get_id()) {
        platform::wakeUpkeepSleep(g_filterThreadStop);
        thread->join();
    }
    thread->detach();
    delete thread;
    g_filterThreadStop = 0;
}

void removeCrashHandling() {
    if (exceptionHandlingDisabled()) return;
    CrashHandlingRemoval const noCrashMeanwhile;
    if (noCrashMeanwhile.refused()) return;  // called from within the crash
    unloadAssertionLibrary();
    stopFilterUpkeep();
    platform::resetProcessHooks();
    platform::stopPreparingNewThreads();
    platform::dropCrashBudget();
    internal::restoreTerminateHandler();
    if (!HandlerState::isNull() && HandlerState::get()->isInitialized()) HandlerState::get()->release();
}

void detachFromProcess() {
    g_processExiting = true;
    stopFilterUpkeep();
    platform::resetProcessHooks();
}

}  // namespace norvane_1
