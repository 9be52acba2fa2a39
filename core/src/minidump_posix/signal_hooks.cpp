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

#include <cstdlib>
#include <iterator>

namespace norvane_1 {
namespace {

constexpr int kCrashSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT};

void passOnToDefaultAction(int signalNumber) {
    struct sigaction action{};
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

void onLateCrashSignal(int signalNumber, siginfo_t*, void*) {
    holdLateFault();
    passOnToDefaultAction(signalNumber);
}

using SignalAction = void (*)(int, siginfo_t*, void*);

// A null action is the default action.
void setAction(int signalNumber, SignalAction handler) {
    struct sigaction action{};
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

// A stack overflow leaves no stack to run the handler on; the installing
// thread, usually the main thread, gets a stack of its own for signals.
// It is made once and never freed: the thread may use it until it ends.
void prepareInstallingThread() {
    stack_t current{};
    if (::sigaltstack(nullptr, &current) == 0 && (current.ss_flags & SS_DISABLE) == 0) return;
    constexpr std::size_t kStackSize = 256 * 1024;
    stack_t alternate{};
    alternate.ss_sp = std::malloc(kStackSize);
    if (alternate.ss_sp == nullptr) return;
    alternate.ss_size = kStackSize;
    ::sigaltstack(&alternate, nullptr);
}

}  // namespace platform
}  // namespace norvane_1
