// The deadline of the crashed thread's hand-over on Linux. POSIX code only.
//
// Up to the hand-over the crashed thread does ordinary work: it allocates,
// logs and writes files. A crash that struck while its thread held a lock of
// that work blocks it for good: glibc, finding its heap corrupted, aborts
// with the heap's lock held, and the first allocation of the crash path then
// waits forever. The process would hang instead of ending. So the crashed
// thread sets an alarm on its way in; should the hand-over not have come when
// it rings, the process ends with the crash's exit code and a line on
// standard error, without a report. Everything here is async-signal-safe.
#include "minidump_internal/platform.h"

#include <signal.h>
#include <unistd.h>

namespace norvane_1 {
namespace platform {
namespace {

// Far more than the way to the hand-over takes, the upkeep thread's stop
// included, even on a slow disk.
constexpr unsigned kHandOverSeconds = 10;

// What the host had, given back at the hand-over: a crash that is passed
// on (runExceptionHandler) leaves the process running.
struct sigaction g_hostAlarmAction;
unsigned g_hostAlarmSeconds = 0;

void onHandOverOverdue(int) {
    static char const kNote[] =
        "norvane: the crashed thread did not hand the crash over within 10 s; a lock held by the crash "
        "blocks it. Ending the process without a report.\n";
    ssize_t const ignored = ::write(STDERR_FILENO, kNote, sizeof kNote - 1);
    (void)ignored;
    ::_exit(3);
}

}  // namespace

void armHandOverDeadline() {
    struct sigaction action {};
    action.sa_handler = onHandOverOverdue;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGALRM, &action, &g_hostAlarmAction);
    // A host may block SIGALRM on its threads; the crashed thread takes it.
    sigset_t alarmOnly;
    sigemptyset(&alarmOnly);
    sigaddset(&alarmOnly, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &alarmOnly, nullptr);
    g_hostAlarmSeconds = ::alarm(kHandOverSeconds);
}

void disarmHandOverDeadline() {
    ::alarm(0);
    ::sigaction(SIGALRM, &g_hostAlarmAction, nullptr);
    ::alarm(g_hostAlarmSeconds);
}

}  // namespace platform
}  // namespace norvane_1
