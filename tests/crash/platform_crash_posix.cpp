// POSIX code only.
#include "platform_crash.h"

#include <signal.h>

namespace crash_test {

char const kHostProcessName[] = "crash_host";
char const kLibraryFileName[] = "libnorvane.so";

// The default action of SIGSEGV kills the process by the signal.
bool endedByPlatformAccessViolation(norvane_test::ChildOutcome const& outcome) {
    return outcome.finished && !outcome.exited && outcome.signal == SIGSEGV;
}

bool endedByMercyKill(norvane_test::ChildOutcome const& outcome) {
    return outcome.finished && !outcome.exited && outcome.signal == SIGTERM;
}

}  // namespace crash_test
