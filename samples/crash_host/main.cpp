// crash_host: a host program that installs crash handling the way a product
// does, sets a few application properties, and then crashes on purpose.
//
// Usage: crash_host <kind> [--handler <path>]
//
//   access-violation       write to address 0
//   divide-by-zero         integer division by zero
//   abort                  call abort()
//   pure-virtual           call a pure virtual function (ends in abort)
//   uncaught-exception     throw a std::runtime_error that nothing catches
//   run-exception-handler  hand captured registers to runExceptionHandler
//   two-threads            two threads access address 0 at the same moment
//   two-threads-apart      two threads access address 0, the second a random
//                          0 to 20 ms after the first
//   two-threads-abort      the same with abort() on both threads
//   heap-corruption        free a block twice (glibc aborts holding its lock)
//   replace-filter         install the host's own crash filter over the
//                          library's, wait 1.5 s, then access address 0
//   reset-threads          print the thread count before install, after
//                          install and after resetUnhandledExceptionHandler
//   reset-and-abort        resetAndAbort(): handling off, then abort with no report
//   custom-sections        register two custom sections (files written into
//                          NORVANE_LOG_DIR), then access address 0
//   fault-during-reset     a second thread accesses address 0 at a random
//                          moment of resetUnhandledExceptionHandler
//   exit-during-crash      a thread accesses address 0 while the main thread
//                          exits a random 0 to 20 ms later
//   call-chain             access address 0 at the end of a known chain of calls
//   library-chain          the same, inside a shared library of the sample's
//   no-unwind-info         a fault in code without unwind information at the
//                          end of the chain
//   garbage-stack          runExceptionHandler with the stack pointer on garbage
//   unreadable-stack       runExceptionHandler with the stack pointer where
//                          nothing is mapped
//   on-demand-report       install, then collectReport of this process with
//                          its threads' stacks; prints the report's path
//   wait-in-known-function install, then wait 60 s on a thread in a known
//                          function, whose address is printed
//   pass-on-then-fault     runExceptionHandler with the handler told to exit
//                          with 6 (passed on), then reset, install again and
//                          access address 0
//   reset-in-shutdown-callback
//                          a shutdown callback that takes crash handling off,
//                          then access address 0
//   terminate-product      install, then terminateProduct(): the feedback
//                          tool ends the process
//   illegal-instruction    execute an undefined instruction
//   breakpoint             execute a breakpoint nothing handles
//   stack-overflow         recurse until the main thread's stack is used up
//   stack-overflow-thread  the same on a thread started after install
//   stack-overflow-early-thread
//                          the same on a thread started before install
//   twenty-threads         20 threads access address 0 at the same moment
//   sleeping-threads       100 threads sleep while 2 access address 0
//   fifty-threads          50 threads sleep while another accesses address 0
//   faulting-callback      a shutdown callback that accesses address 0
//   exiting-callback       a shutdown callback that calls exit(0)
//   held-up                a crash held up on its way to the handler (a
//                          log file that never answers on Linux, a shutdown
//                          callback waiting for a held lock on Windows);
//                          needs NORVANE_LOG_DIR
//   creation-log-writer    write CRASH_HOST_RECORDS creation-log records
//                          marked with CRASH_HOST_WRITER, without installing
//   none                   install, then exit normally
//
// Without --handler the library starts its default handler, kelmur-feedback
// beside this program. The environment variables of the library apply
// (NORVANE_LOG_DIR, NORVANE_CRASH_HANDLER, ...); CRASH_HOST_TIMESTAMP_FILE
// makes the host note the moment it faults (fault_stamp.h);
// CRASH_HOST_SETTLE_MS makes it wait that long after its install;
// CRASH_HOST_IGNORE_CHILDREN has the system reap child processes (SIGCHLD
// ignored) before the library is installed.
//
// Exit codes: 3 after a crash the library handled, 0 for none,
// reset-threads, creation-log-writer and on-demand-report (1 when it gave
// no report), 2 for a wrong command line, 5 when
// custom sections can't be registered, 4 when the library passed a
// runExceptionHandler crash on, 8 when terminateProduct returned, 42 when
// the host's own filter ran.
#include "fault_stamp.h"
#include "faults.h"
#include "host_platform.h"
#include "on_demand.h"
#include "report_extras.h"
#include "stack_faults.h"
#include "zoo_faults.h"

#include <norvane_1/norvane.h>

#include <atomic>
#include <chrono>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>
#include <string>
#include <thread>

namespace {

using namespace crash_host;

constexpr int kUsageExitCode = 2;
constexpr int kPassedOnExitCode = 4;
constexpr int kNoCustomSectionsExitCode = 5;
std::wstring g_handlerPath;  // empty: the library's default handler
std::string g_kindName;

void install() {
    norvane_1::setUnhandledExceptionHandler(g_handlerPath.empty() ? nullptr : g_handlerPath.c_str());
    norvane_1::setAppProperty(L"Host", gavrel2::variant_t(L"crash_host"));
    norvane_1::setAppProperty(L"CrashKind", gavrel2::variant_t(wideArgument(g_kindName.c_str())));
    norvane_1::setAppProperty(L"Answer", gavrel2::variant_t(42));
}

void say(char const* text) { std::cout << "crash_host: " << text << std::endl; }

[[noreturn]] void fault(void (*how)()) {
    stampFault();
    how();
    std::abort();  // every fault is [[noreturn]]; the pointer type can't say so
}

[[noreturn]] void faultOnTwoThreadsAtOnce() { faultOnTwoThreads(accessViolation, std::chrono::microseconds(0)); }

// The second crash lands anywhere on the first one's way to the hand-over
// and beyond: a few milliseconds natively, more under Wine.
std::chrono::microseconds randomDelayUpTo20Milliseconds() {
    std::random_device random;
    return std::chrono::microseconds(random() % 20000);
}

[[noreturn]] void faultOnTwoThreadsApart() { faultOnTwoThreads(accessViolation, randomDelayUpTo20Milliseconds()); }

[[noreturn]] void abortOnTwoThreadsApart() { faultOnTwoThreads(callAbort, randomDelayUpTo20Milliseconds()); }

// The registers reach runExceptionHandler straight from `handOver`.
int runHandlerDirectly(void (*handOver)()) {
    stampFault();
    handOver();
    say("the library passed the crash on");
    return kPassedOnExitCode;
}

[[noreturn]] void faultUnderReplacedFilter() {
    replaceCrashFilter();
    say("installed the host's own crash filter, waiting 1.5 s for the library to take over again");
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    say("accessing address 0");
    fault(accessViolation);
}

// A thread that has been joined may still be listed for a moment while the
// system finishes it; a thread left running would be listed for good.
std::size_t settledThreadCount(std::size_t expected) {
    std::size_t count = countThreads();
    for (int attempt = 0; attempt < 100 && count > expected; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        count = countThreads();
    }
    return count;
}

int countThreadsAroundInstall() {
    std::size_t const before = countThreads();
    install();
    std::size_t const installed = countThreads();
    norvane_1::resetUnhandledExceptionHandler();
    std::size_t const after = settledThreadCount(before);
    std::cout << "threads before install: " << before << "\nthreads after install: " << installed
              << "\nthreads after reset: " << after << std::endl;
    return 0;
}

// The fault lands before, during or after the reset; whichever it is, the
// process ends (handled by the library, or the platform's way) and never hangs.
int faultDuringReset() {
    // Half the runs aim at the first 0.4 ms, where a native reset lies;
    // the others at 4 ms, for slower systems.
    std::random_device random;
    auto const delay = std::chrono::microseconds(random() % (random() % 2 == 0 ? 400 : 4000));
    std::atomic<bool> ready{false};
    std::atomic<bool> go{false};
    std::thread faulting([&ready, &go, delay] {
        ready = true;
        while (!go) {
        }
        spinFor(delay);
        accessViolation();
    });
    while (!ready) {
    }
    go = true;
    norvane_1::resetUnhandledExceptionHandler();
    faulting.join();
    return 0;  // not reached: the thread's fault ends the process
}

// The host's exit lands anywhere in a crash on another thread; whichever
// comes first, the process ends and never hangs.
int exitDuringCrash() {
    std::thread faulting(accessViolation);
    spinFor(randomDelayUpTo20Milliseconds());
    std::exit(0);
}

// A crash passed on must leave crash handling usable: after a reset and a
// new install, the next crash is handled again.
int faultAfterAPassedOnCrash() {
    setEnvironmentVariable("KELMUR_FEEDBACK_EXIT_CODE", "6");
    runOwnExceptionHandler();
    say("the first crash was passed on; installing again");
    setEnvironmentVariable("KELMUR_FEEDBACK_EXIT_CODE", nullptr);
    norvane_1::resetUnhandledExceptionHandler();
    install();
    fault(accessViolation);
}

// The callback runs on the crashed thread, inside the crash: the reset it
// asks for must neither hang nor spin, and the crash goes on.
int faultWithResettingCallback() {
    norvane_1::setGFGSutdownCallback([] {
        norvane_1::resetUnhandledExceptionHandler();
        return true;
    });
    fault(accessViolation);
}

int faultWithCustomSections() {
    if (!registerCustomSections()) {
        say("can't register the custom sections: is NORVANE_LOG_DIR set?");
        return kNoCustomSectionsExitCode;
    }
    fault(accessViolation);
}

int writeRecords() {
    writeCreationLogRecords();
    return 0;
}

struct Kind {
    char const* name;
    char const* announcement;
    int (*run)();
    bool installsItself;
};

Kind const kKinds[] = {
    {"access-violation", "accessing address 0", []() -> int { fault(accessViolation); }, false},
    {"divide-by-zero", "dividing by zero", []() -> int { fault(divideByZero); }, false},
    {"abort", "calling abort()", []() -> int { fault(callAbort); }, false},
    {"pure-virtual", "calling a pure virtual function", []() -> int { fault(pureVirtualCall); }, false},
    {"uncaught-exception", "throwing an exception nothing catches", []() -> int { fault(uncaughtException); }, false},
    {"run-exception-handler", "handing captured registers to runExceptionHandler",
     []() -> int { return runHandlerDirectly(runOwnExceptionHandler); }, false},
    {"two-threads", "accessing address 0 on two threads at once", []() -> int { fault(faultOnTwoThreadsAtOnce); },
     false},
    {"two-threads-apart", "accessing address 0 on two threads up to 20 ms apart",
     []() -> int { fault(faultOnTwoThreadsApart); }, false},
    {"two-threads-abort", "calling abort() on two threads up to 20 ms apart",
     []() -> int { fault(abortOnTwoThreadsApart); }, false},
    {"heap-corruption", "freeing a block twice", []() -> int { fault(corruptHeap); }, false},
    {"replace-filter", "replacing the library's crash filter", []() -> int { faultUnderReplacedFilter(); }, false},
    {"reset-threads", "counting threads around install and reset", countThreadsAroundInstall, true},
    {"reset-and-abort", "taking crash handling off and aborting",
     []() -> int {
         norvane_1::resetAndAbort();
         return 0;
     },
     false},
    {"custom-sections", "registering two custom sections, then accessing address 0", faultWithCustomSections, false},
    {"fault-during-reset", "accessing address 0 while crash handling is reset", faultDuringReset, false},
    {"exit-during-crash", "exiting while another thread's crash is handled", exitDuringCrash, false},
    {"call-chain", "accessing address 0 three calls deep", []() -> int { fault(faultThroughCallChain); }, false},
    {"library-chain", "accessing address 0 in the chain library", []() -> int { fault(faultInChainLibrary); }, false},
    {"no-unwind-info", "faulting in code without unwind information", []() -> int { fault(faultWithoutUnwindInfo); },
     false},
    {"on-demand-report", "collecting a report of this process", reportOnDemand, false},
    {"wait-in-known-function", "waiting for a report made from outside", waitInKnownFunction, false},
    {"pass-on-then-fault", "passing a crash on, then crashing again", faultAfterAPassedOnCrash, false},
    {"reset-in-shutdown-callback", "accessing address 0 with a shutdown callback that resets",
     faultWithResettingCallback, false},
    {"terminate-product", "having the feedback tool end this process", terminateThroughTool, false},
    {"garbage-stack", "handing a stack of garbage to runExceptionHandler",
     []() -> int { return runHandlerDirectly(crashOnGarbageStack); }, false},
    {"unreadable-stack", "handing an unmapped stack to runExceptionHandler",
     []() -> int { return runHandlerDirectly(crashOnUnreadableStack); }, false},
    {"illegal-instruction", "executing an undefined instruction", []() -> int { fault(illegalInstruction); }, false},
    {"breakpoint", "executing a breakpoint", []() -> int { fault(breakpoint); }, false},
    {"stack-overflow", "overflowing the main thread's stack", []() -> int { overflowStack(); }, false},
    {"stack-overflow-thread", "overflowing a new thread's stack", []() -> int { overflowStackOnNewThread(); }, false},
    {"stack-overflow-early-thread", "overflowing the stack of a thread older than the install",
     []() -> int { overflowStackOnEarlierThread(install); }, true},
    {"twenty-threads", "accessing address 0 on 20 threads at once", []() -> int { faultOnTwentyThreads(); }, false},
    {"sleeping-threads", "accessing address 0 on 2 threads beside 100 sleeping ones",
     []() -> int { faultBesideSleepingThreads(); }, false},
    {"fifty-threads", "accessing address 0 beside 50 sleeping threads", []() -> int { faultBesideFiftyThreads(); },
     false},
    {"faulting-callback", "accessing address 0 with a shutdown callback that does too",
     []() -> int { faultWithFaultingCallback(); }, false},
    {"exiting-callback", "accessing address 0 with a shutdown callback that exits",
     []() -> int { faultWithExitingCallback(); }, false},
    {"held-up", "accessing address 0 with the crash held up", []() -> int { faultWhenHeldUp(); }, false},
    {"creation-log-writer", "writing creation-log records", writeRecords, true},
    {"none", "exiting normally", []() -> int { return 0; }, false},
};

Kind const* findKind(std::string const& name) {
    for (Kind const& kind : kKinds) {
        if (name == kind.name) return &kind;
    }
    return nullptr;
}

// A product crashes long after its install, not within a millisecond of it:
// the wait lets the library finish what its install started.
void settleAfterInstall() {
    char const* settle = std::getenv("CRASH_HOST_SETTLE_MS");
    if (settle == nullptr) return;
    auto const until = std::chrono::steady_clock::now() + std::chrono::milliseconds(std::atoi(settle));
    while (std::chrono::steady_clock::now() < until) {
    }
}

int usage() {
    std::cerr << "usage: crash_host <kind> [--handler <path>]\nkinds:";
    for (Kind const& kind : kKinds) std::cerr << ' ' << kind.name;
    std::cerr << std::endl;
    return kUsageExitCode;
}

}  // namespace

int main(int argc, char** argv) {
    // Arguments are decoded in the locale's encoding (host_platform.h).
    std::setlocale(LC_CTYPE, "");
    if (argc != 2 && !(argc == 4 && std::strcmp(argv[2], "--handler") == 0)) return usage();
    Kind const* kind = findKind(argv[1]);
    if (kind == nullptr) return usage();
    g_kindName = kind->name;
    if (argc == 4) g_handlerPath = wideArgument(argv[3]);

    if (std::getenv("CRASH_HOST_IGNORE_CHILDREN") != nullptr) ignoreChildProcessEnds();
    if (!kind->installsItself) install();
    settleAfterInstall();
    say(kind->announcement);
    return kind->run();
}
