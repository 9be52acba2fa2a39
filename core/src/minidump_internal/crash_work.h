// The hand-over from the worker to the ExceptionHandler. Portable code only.
#pragma once

#include <string>

namespace norvane_1 {

struct DumpInfo;

// The result of g_exceptionHandler's handleCrash, or -1 without a handler.
int runCrashHandler(DumpInfo const& info);

// What the worker does once, when it starts, so that a crash finds it done:
// the worker's heap arena, the time zone of the first time stamp, the
// creation log in the custom-section list of the log directory, and the
// debug-help libraries.
void prepareCrashWork();

// Puts the creation log into the custom-section list of `directory`, unless
// NORVANE1_NO_CREATION_LOG is set or this worker has done so already and
// the list is still there. The worker's thread only.
void listCreationLog(std::wstring const& directory);

}  // namespace norvane_1
