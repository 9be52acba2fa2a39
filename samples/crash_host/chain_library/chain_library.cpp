// The chain library: a shared library of the sample's own, so that a crash
// test can fault inside a library called from the program.
#include "../call_chain.h"

#if defined(_WIN32)
#define CRASH_CHAIN_EXPORT __declspec(dllexport)
#else
#define CRASH_CHAIN_EXPORT __attribute__((visibility("default")))
#endif

#define CRASH_CHAIN_FUNCTION extern "C" __attribute__((noinline))

namespace {
int* volatile g_nowhere = nullptr;
volatile int g_depth = 0;
}  // namespace

CRASH_CHAIN_FUNCTION __attribute__((no_sanitize("address", "undefined"))) void crash_chain_fault() {
    *g_nowhere = 42;
    g_depth = 3;
}

CRASH_CHAIN_FUNCTION void crash_chain_inner() {
    crash_chain_fault();
    g_depth = 2;
}

CRASH_CHAIN_FUNCTION CRASH_CHAIN_EXPORT void crash_chain_entry() {
    crash_chain_inner();
    g_depth = 1;
}
