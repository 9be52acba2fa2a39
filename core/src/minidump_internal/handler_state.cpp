// HandlerState: the singleton, its worker thread and the hand-over flags.
// Portable code only.
//
// The worker waits on m_condition until a crash (m_runStatus) or an end
// (m_exitStatus) is asked for. Both flags are written under m_workerMutex,
// and every thread that takes it (the crashed thread, release(), the worker)
// does so through a lock object of its own: a lock object shared between
// threads would be a data race of its own. A worker serves one crash: when
// the crashed thread sets both flags, one pass of the loop does the crash
// work, then clears the exit flag and ends, and the crashed thread, which
// waits for the exit flag to fall, wakes. m_lock is kept for getLock().
#include <norvane_1/crash_handling.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/os_layer.h>

#include "crash_stages.h"
#include "crash_work.h"
#include "minidump_problem_report_storage/log_directory.h"
#include "module_map/debug_help_libraries.h"
#include "module_map/stack_capture.h"
#include "platform.h"
#include "process_globals.h"

#include <gavrel2/environment.h>

#include <boost/thread.hpp>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace norvane_1 {
namespace {

// In-process collection only when asked for alone: both variables cancel.
std::int32_t collectModeFromEnvironment() {
    bool const outOfProcess = !gavrel2::get_environ_value(L"NORVANEMINIDUMP1_OUTOFPROCESS_COLLECT").empty();
    bool const inProcess = !gavrel2::get_environ_value(L"NORVANEMINIDUMP1_INPROCESS_COLLECT").empty();
    return inProcess && !outOfProcess ? 1 : 0;
}

constexpr long kReleaseJoinMicroseconds = 5000000;
constexpr int kInstallWaitMilliseconds = 100;

// The debug-help and stack-walk libraries are loaded once the install that
// started this worker has returned: loaded meanwhile, they took the dynamic
// loader's locks that the install's own steps wait for (the upkeep thread's
// start, the assertion library's load), natively a quarter of a
// millisecond of the install.
// Bounded, for an install that never returns, a crash inside it.
void awaitInstallEnd() {
    for (int waited = 0; g_installing && waited < kInstallWaitMilliseconds; ++waited) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace

std::unique_ptr<HandlerState> HandlerState::m_handler;

HandlerState::HandlerState()
    : m_collectMode(collectModeFromEnvironment()),
      m_propertyMutex(new boost::mutex),
      m_mutex(new boost::mutex),
      m_workerMutex(new boost::mutex),
      m_lock(new boost::unique_lock<boost::mutex>(*m_workerMutex, boost::defer_lock)),
      m_condition(new boost::condition_variable_any) {}

// The thread must have been dealt with by release(); a lock that m_lock
// still holds is given up by its own destructor.
HandlerState::~HandlerState() = default;

HandlerState* HandlerState::get() {
    if (!m_handler) m_handler.reset(createHandlerState());
    return m_handler.get();
}

bool HandlerState::isNull() { return !m_handler; }

bool HandlerState::init() {
    if (m_thread) return false;
    m_thread.reset(new boost::thread(boost::ref(*this)));
    m_initialized = true;
    return true;
}

void prepareCrashWork() {
    // glibc gives a thread its heap arena at its first allocation, and
    // mapping one is a good part of a millisecond; the volatile keeps the
    // compiler from dropping the pair.
    void* volatile block = std::malloc(64);
    std::free(block);
    static_cast<void>(os_layer::getTimeStamp());
    listCreationLog(logDirectory());
    awaitInstallEnd();
    holdDebugHelpLibraries();
    prepareStackCapture();
}

void HandlerState::operator()() {
    g_workerThreadId = platform::currentThreadId();
    prepareCrashWork();
    for (;;) {
        // The flags are read under the lock only: the crashed thread and the
        // remove step set them from their own threads.
        bool runNow = false;
        bool exitNow = false;
        {
            boost::unique_lock<boost::mutex> lock(*m_workerMutex);
            while (!m_exitStatus && !m_runStatus) m_condition->wait(lock);
            runNow = m_runStatus;
            exitNow = m_exitStatus;
        }
        if (runNow) {
            initInfoPaths();
            run();
            {
                boost::unique_lock<boost::mutex> lock(*m_workerMutex);
                m_runStatus = false;
            }
            m_condition->notify_all();
        }
        if (exitNow) {
            {
                boost::unique_lock<boost::mutex> lock(*m_workerMutex);
                m_exitStatus = false;
            }
            m_condition->notify_all();
            return;
        }
    }
}

void HandlerState::release() {
    if (g_processExiting) {
        // The process is going: its other threads are gone or going, and
        // nothing may be waited for.
        if (m_thread) m_thread->detach();
        m_thread.reset();
        m_handler.reset();
        return;
    }
    if (!m_initialized) {
        m_handler.reset();
        return;
    }
    m_initialized = false;
    {
        boost::unique_lock<boost::mutex> lock(*m_workerMutex);
        while (m_exitStatus) m_condition->wait(lock);  // let a hand-over under way finish
        m_exitStatus = true;
    }
    m_condition->notify_one();
    bool const joined = m_thread->timed_join(boost::get_system_time() +
                                             boost::posix_time::microseconds(kReleaseJoinMicroseconds));
    m_thread->detach();
    m_thread.reset();
    if (joined) {
        m_handler.reset();
    } else {
        // A worker that is still running may touch the object: leave it
        // alive rather than free it under the worker.
        static_cast<void>(m_handler.release());
    }
}

void HandlerState::handOverCrash(std::function<void()> const& prepare) {
    {
        boost::unique_lock<boost::mutex> lock(*m_workerMutex);
        prepare();
        m_runStatus = true;
        m_exitStatus = true;
    }
    m_condition->notify_one();
}

int HandlerState::awaitWorker() {
    boost::unique_lock<boost::mutex> lock(*m_workerMutex);
    while (m_exitStatus) m_condition->wait(lock);
    return m_exitCode;
}

CrashStages& HandlerState::crashStages() {
    static CrashStages stages;  // no data of its own: its one word is a constant-initialised atomic
    return stages;
}

bool HandlerState::isInitialized() const { return m_initialized; }
void HandlerState::setRunStatus(bool run) { m_runStatus = run; }
bool HandlerState::getRunStatus() const { return m_runStatus; }
void HandlerState::setExitStatus(bool exit) { m_exitStatus = exit; }
bool HandlerState::getExitStatus() const { return m_exitStatus; }
void HandlerState::setExitCode(int code) { m_exitCode = code; }
int HandlerState::getExitCode() const { return m_exitCode; }

void HandlerState::join() {
    if (m_thread) m_thread->join();
}

boost::mutex& HandlerState::getMutex() { return *m_mutex; }
boost::unique_lock<boost::mutex>& HandlerState::getLock() { return *m_lock; }
boost::condition_variable_any& HandlerState::getCondition() { return *m_condition; }
DumpInfo& HandlerState::getDumpInfo() { return m_dumpInfo; }

void HandlerState::addAppProperty(std::wstring const& key, gavrel2::variant_t const& value) {
    boost::lock_guard<boost::mutex> guard(*m_propertyMutex);
    if (value.empty()) {
        m_appProperties.erase(key);
    } else {
        m_appProperties[key] = value;
    }
}

HandlerState::AppProperties HandlerState::getAppPropertyMap() const {
    boost::lock_guard<boost::mutex> guard(*m_propertyMutex);
    return m_appProperties;
}

void HandlerState::setProblemReportStorage(ProblemReportStorage const& storage) { m_storage = storage; }
ProblemReportStorage HandlerState::getProblemReportStorage() const { return m_storage; }
void HandlerState::setGFGSutdownCallback(ShutdownCallback callback) { m_shutdownCallback = callback; }

bool HandlerState::useGFGCallback() { return m_shutdownCallback != nullptr && m_shutdownCallback(); }

}  // namespace norvane_1
