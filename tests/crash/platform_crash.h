// How crashes look from outside on each platform. platform_crash_posix.cpp
// and platform_crash_windows.cpp implement it.
#pragma once

#include "child_process.h"

#include <cstddef>
#include <cstdint>

namespace crash_test {

// The name the report's "Process" section gives the sample host.
extern char const kHostProcessName[];
// The beginning of the crash-handling library's file name.
extern char const kLibraryFileName[];

// True if the platform's own handling ended the process for an access
// violation: nothing of the library stood in the way.
bool endedByPlatformAccessViolation(norvane_test::ChildOutcome const& outcome);

// True if the feedback tool's -mercy-kill ended a console program: by
// SIGTERM on Linux; on Windows, with no window to close, terminated with
// exit code 0.
bool endedByMercyKill(norvane_test::ChildOutcome const& outcome);

// The number of threads a running process has now.
std::size_t threadCountOf(std::uint32_t processId);

}  // namespace crash_test
