// The library leaving the process on Linux. POSIX code only.
#include "minidump_internal/filter_upkeep.h"

namespace {

// Runs when the library is unloaded, at process exit after the atexit
// handlers, or at dlclose.
__attribute__((destructor)) void onLibraryUnload() { norvane_1::detachFromProcess(); }

}  // namespace
