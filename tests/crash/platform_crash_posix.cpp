// POSIX code only.
#include "platform_crash.h"

#include <filesystem>
#include <iterator>
#include <string>

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

std::size_t threadCountOf(std::uint32_t processId) {
    std::error_code error;
    std::filesystem::directory_iterator const tasks("/proc/" + std::to_string(processId) + "/task", error);
    return error ? 0 : static_cast<std::size_t>(std::distance(tasks, std::filesystem::directory_iterator()));
}

}  // namespace crash_test
