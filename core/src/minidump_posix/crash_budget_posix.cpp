// The crash's time budget on Linux (platform.h). POSIX code only.
//
// From the fault to the handler's start the crash does ordinary work: it
// allocates, logs and writes files, on the crashed thread and then on the
// worker. A crash that struck while some thread held a lock of that work
// blocks it for good: glibc, finding its heap corrupted, aborts with the
// heap's lock held, and the first allocation of the crash path then waits
// forever. The process would hang instead of ending. So the crashed thread
// starts an interval timer on its way in; should the handler not have
// started when it rings, the process ends with the crash's exit code and a
// line on standard error. Arming, ringing and the line are async-signal-safe:
// the line is made at install, when the budget's length is known.
#include "minidump_internal/platform.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

namespace norvane_1 {
namespace platform {
namespace {

std::uint32_t g_budgetMilliseconds = 30000;
char g_overdueNote[192];
std::size_t g_overdueNoteLength = 0;

// What the host had, given back when the budget ends: a crash that is
// passed on (runExceptionHandler) leaves the process running.
std::atomic<bool> g_armed{false};
struct sigaction g_hostAlarmAction;
itimerval g_hostTimer;

void onBudgetSpent(int) {
    ssize_t const ignored = ::write(STDERR_FILENO, g_overdueNote, g_overdueNoteLength);
    (void)ignored;
    ::_exit(3);
}

itimerval timerOf(std::uint32_t milliseconds) {
    itimerval timer{};
    timer.it_value.tv_sec = static_cast<time_t>(milliseconds / 1000);
    timer.it_value.tv_usec = static_cast<suseconds_t>(milliseconds % 1000 * 1000);
    return timer;
}

}  // namespace

void prepareCrashBudget(std::uint32_t milliseconds) {
    g_budgetMilliseconds = milliseconds;
    int const length = std::snprintf(g_overdueNote, sizeof g_overdueNote,
                                     "norvane: the crash's handler did not start within %u ms; something the crash "
                                     "left locked holds it up. Ending the process with the report as it stands.\n",
                                     milliseconds);
    g_overdueNoteLength = length > 0 ? std::min(static_cast<std::size_t>(length), sizeof g_overdueNote - 1) : 0;
}

void dropCrashBudget() {}

void armCrashBudget() {
    struct sigaction action {};
    action.sa_handler = onBudgetSpent;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGALRM, &action, &g_hostAlarmAction);
    // A host may block SIGALRM on its threads; the crashed thread takes it.
    sigset_t alarmOnly;
    sigemptyset(&alarmOnly);
    sigaddset(&alarmOnly, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &alarmOnly, nullptr);
    itimerval const budget = timerOf(g_budgetMilliseconds);
    ::setitimer(ITIMER_REAL, &budget, &g_hostTimer);
    g_armed = true;
}

void endCrashBudget() {
    if (!g_armed.exchange(false)) return;
    itimerval const off{};
    ::setitimer(ITIMER_REAL, &off, nullptr);
    ::sigaction(SIGALRM, &g_hostAlarmAction, nullptr);
    ::setitimer(ITIMER_REAL, &g_hostTimer, nullptr);
}

}  // namespace platform
}  // namespace norvane_1
