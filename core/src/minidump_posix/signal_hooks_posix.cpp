// The process hooks on Linux: handlers for the signals of a crash. POSIX
// code only.
//
// A fault, an abort and a pure-virtual call (which ends in abort) all arrive
// as signals; the handler gives them to dumpMiniDump like Windows gives its
// filter an exception. When dumpMiniDump returns (the handler process said
// "not our exception"), the signal's default action is restored and the
// signal raised again, so the process ends as it would have without us, core
// dump included: the signal stays blocked until the handler returns and is
// delivered then, before a faulting instruction could run again.
#include "minidump_internal/crash_filter.h"
#include "minidump_internal/platform.h"

#include <pthread.h>
#include <signal.h>

#include <iterator>

namespace norvane_1 {
namespace {

constexpr int kCrashSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT};

void passOnToDefaultAction(int signalNumber) {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    ::sigaction(signalNumber, &action, nullptr);
    ::pthread_kill(::pthread_self(), signalNumber);
}

void onCrashSignal(int signalNumber, siginfo_t* info, void* context) {
    ExceptionData data{signalNumber, info, context};
    dumpMiniDump(&data);
    passOnToDefaultAction(signalNumber);
}

void onLateCrashSignal(int signalNumber, siginfo_t* info, void* context) {
    ExceptionData data{signalNumber, info, context};
    lateFault(&data);
    passOnToDefaultAction(signalNumber);
}

using SignalAction = void (*)(int, siginfo_t*, void*);

// A null action is the default action.
void setAction(int signalNumber, SignalAction handler) {
    struct sigaction action {};
    sigemptyset(&action.sa_mask);
    if (handler != nullptr) {
        action.sa_sigaction = handler;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    } else {
        action.sa_handler = SIG_DFL;
    }
    ::sigaction(signalNumber, &action, nullptr);
}

}  // namespace

namespace platform {

void setProcessHooks() {
    for (int signalNumber : kCrashSignals) setAction(signalNumber, onCrashSignal);
}

void resetProcessHooks() {
    for (int signalNumber : kCrashSignals) setAction(signalNumber, nullptr);
}

void setLateFaultHooks() {
    for (int signalNumber : kCrashSignals) setAction(signalNumber, onLateCrashSignal);
}

// A crash signal's handler runs with that signal blocked, and a fault of a
// blocked signal ends the process on the spot. An exit() needs nothing: the
// library's clean-up runs inside it, before any thread has ended.
void admitCallbackFailures() {
    sigset_t crashSignals;
    sigemptyset(&crashSignals);
    for (int signalNumber : kCrashSignals) sigaddset(&crashSignals, signalNumber);
    ::pthread_sigmask(SIG_UNBLOCK, &crashSignals, nullptr);
}

}  // namespace platform
}  // namespace norvane_1
