// What the crash filter receives on Linux: the signal, as a SA_SIGINFO
// handler gets it.
#pragma once

#include <signal.h>

namespace norvane_1 {

struct ExceptionData {
    int signalNumber;
    siginfo_t const* signalInfo;  // may be null, for a report without a signal
    void const* userContext;      // the handler's ucontext_t; may be null
};

}  // namespace norvane_1
