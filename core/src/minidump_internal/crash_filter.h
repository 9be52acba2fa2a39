// The crash filter: where every crash enters crash handling. Portable code only.
#pragma once

#include <norvane_1/exception_data.h>

namespace norvane_1 {

// Filter results, as the system's unhandled-exception filter knows them.
constexpr long kContinueSearch = 0;
constexpr long kExecuteHandler = 1;

// Runs on the crashed thread: hands the crash to the worker, waits for it
// and ends the process with exit code 3, or returns kContinueSearch when the
// handler process says the exception isn't the product's.
long dumpMiniDump(ExceptionData* data);

}  // namespace norvane_1
