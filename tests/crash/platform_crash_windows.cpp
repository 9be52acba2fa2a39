// Windows code only.
#include "platform_crash.h"

namespace crash_test {

char const kHostProcessName[] = "crash_host.exe";
char const kLibraryFileName[] = "norvane.dll";

// Without a filter the system ends the process with the exception code.
bool endedByPlatformAccessViolation(norvane_test::ChildOutcome const& outcome) {
    return outcome.finished && outcome.exitCode == 0xC0000005;
}

bool endedByMercyKill(norvane_test::ChildOutcome const& outcome) {
    return outcome.finished && outcome.exitCode == 0;
}

}  // namespace crash_test
