// The hand-over from the worker to the ExceptionHandler. Portable code only.
#pragma once

namespace norvane_1 {

struct DumpInfo;

// The result of g_exceptionHandler's handleCrash, or -1 without a handler.
int runCrashHandler(DumpInfo const& info);

}  // namespace norvane_1
