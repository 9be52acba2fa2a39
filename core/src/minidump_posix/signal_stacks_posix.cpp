// Stacks for signals, on every thread. POSIX code only.
//
// A thread that has used up its stack can't run a signal handler on it: the
// kernel, finding no room for the signal's frame, ends the process on the
// spot, with no report. So every thread that may fault gets a stack of its
// own for signals (sigaltstack), on which the crash signals' handlers run
// (they are set with SA_ONSTACK). A thread's signal stack can only be set by
// the thread itself, so each kind of thread is reached its own way:
//
//  - the installing thread sets its own, at install;
//  - threads already running at install are each asked by a signal to set
//    theirs (SIGURG, when the host doesn't handle it; its default is to be
//    ignored, so a request that arrives after remove does nothing);
//  - threads started later: the shared library's pthread_create stands in
//    front of the C library's (thread_create_posix.cpp), which it calls, and
//    the new thread sets its stack before it runs its start routine.
//
// A thread that blocks SIGURG for good, or one made without pthread_create,
// keeps no stack for signals; its stack overflow ends the process the
// system's way, as before.
//
// The stacks are mapped, not allocated: pages that no handler ever touches
// take no memory. A guard page below each stops a handler that runs off its
// end. A stack made for a thread is unmapped when the thread ends; the
// installing thread's stays until the process ends.
#include "signal_stacks.h"

#include "minidump_internal/platform.h"

#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <new>

namespace norvane_1 {
namespace {

// Room for the whole crash path on a thread whose own stack is gone: the
// logger, the report's first section and the hand-over.
constexpr std::size_t kSignalStackSize = 256 * 1024;
constexpr int kStackRequestSignal = SIGURG;
// How long install waits for the running threads to answer the request.
constexpr long kRequestWaitMilliseconds = 200;

std::atomic<bool> g_newThreadsGetStacks{false};
std::atomic<int> g_requestsAnswered{0};

std::size_t pageSize() { return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)); }

// The stack a thread made for itself, unmapped when the thread ends.
pthread_key_t g_ownStackKey;
pthread_once_t g_ownStackKeyOnce = PTHREAD_ONCE_INIT;

void unmapOwnStack(void* base) {
    stack_t current{};
    // A thread that ends from within a signal handler still stands on it.
    if (::sigaltstack(nullptr, &current) == 0 && (current.ss_flags & SS_ONSTACK) != 0) return;
    stack_t off{};
    off.ss_flags = SS_DISABLE;
    ::sigaltstack(&off, nullptr);
    ::munmap(base, kSignalStackSize + pageSize());
}

void makeOwnStackKey() { ::pthread_key_create(&g_ownStackKey, unmapOwnStack); }

bool hasSignalStack() {
    stack_t current{};
    return ::sigaltstack(nullptr, &current) == 0 && (current.ss_flags & SS_DISABLE) == 0;
}

// A new stack for signals, not yet set; SS_DISABLE when there is one
// already or no memory. Async-signal-safe.
stack_t mapSignalStack() {
    stack_t alternate{};
    alternate.ss_flags = SS_DISABLE;
    if (hasSignalStack()) return alternate;
    std::size_t const guard = pageSize();
    void* const base = ::mmap(nullptr, kSignalStackSize + guard, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (base == MAP_FAILED) return alternate;
    ::mprotect(base, guard, PROT_NONE);
    alternate.ss_sp = static_cast<char*>(base) + guard;
    alternate.ss_size = kSignalStackSize;
    alternate.ss_flags = 0;
    return alternate;
}

void* mappingOf(stack_t const& stack) { return static_cast<char*>(stack.ss_sp) - pageSize(); }

void giveThisThreadOwnStack() {
    stack_t const alternate = mapSignalStack();
    if (alternate.ss_flags == SS_DISABLE) return;
    if (::sigaltstack(&alternate, nullptr) != 0) {
        ::munmap(mappingOf(alternate), kSignalStackSize + pageSize());
        return;
    }
    ::pthread_setspecific(g_ownStackKey, mappingOf(alternate));
}

// Async-signal-safe but for pthread_setspecific, which glibc does without a
// lock once the key exists (made at install, before any request is sent).
// The return from a handler sets the thread's signal stack back to what it
// was when the signal came, from the context; so the new stack goes there.
void onStackRequest(int, siginfo_t*, void* context) {
    int const savedErrno = errno;
    stack_t const alternate = mapSignalStack();
    if (alternate.ss_flags != SS_DISABLE) {
        static_cast<ucontext_t*>(context)->uc_stack = alternate;
        ::pthread_setspecific(g_ownStackKey, mappingOf(alternate));
    }
    g_requestsAnswered.fetch_add(1);
    errno = savedErrno;
}

void sleepOneMillisecond() {
    timespec const pause{0, 1000000};
    ::nanosleep(&pause, nullptr);
}

// True when `thread` blocks the request now: the logger's pool threads block
// every signal for good, and a thread that is just being started blocks them
// all until it runs. Such a thread is asked but not waited for; the request
// reaches it when it unblocks, as long as crash handling is installed.
bool blocksRequests(pid_t thread) {
    char path[64];
    std::snprintf(path, sizeof path, "/proc/self/task/%d/status", static_cast<int>(thread));
    std::FILE* status = std::fopen(path, "r");
    if (status == nullptr) return true;
    char line[128];
    unsigned long long blocked = 0;
    while (std::fgets(line, sizeof line, status) != nullptr) {
        if (std::sscanf(line, "SigBlk: %llx", &blocked) == 1) break;
    }
    std::fclose(status);
    return (blocked >> (kStackRequestSignal - 1)) & 1u;
}

// The request's handler stays from install to remove, for requests that
// arrive late; only a signal nobody handles is borrowed.
struct sigaction g_requestActionBefore;
bool g_requestHandlerSet = false;

bool setRequestHandler() {
    struct sigaction request {};
    request.sa_sigaction = onStackRequest;
    sigemptyset(&request.sa_mask);
    request.sa_flags = SA_RESTART | SA_SIGINFO;
    struct sigaction previous {};
    if (::sigaction(kStackRequestSignal, &request, &previous) != 0) return false;
    if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN && previous.sa_sigaction != onStackRequest) {
        ::sigaction(kStackRequestSignal, &previous, nullptr);
        return false;
    }
    if (!g_requestHandlerSet) g_requestActionBefore = previous;
    g_requestHandlerSet = true;
    return true;
}

// Asks every other thread to set its signal stack, and waits a little for
// the answers of those that can answer now.
void askRunningThreads() {
    if (!setRequestHandler()) return;
    g_requestsAnswered = 0;
    int answering = 0;
    pid_t const self = static_cast<pid_t>(::syscall(SYS_gettid));
    if (DIR* tasks = ::opendir("/proc/self/task")) {
        while (dirent const* entry = ::readdir(tasks)) {
            pid_t const thread = static_cast<pid_t>(std::atoi(entry->d_name));
            if (thread <= 0 || thread == self) continue;
            bool const blocking = blocksRequests(thread);
            if (::syscall(SYS_tgkill, ::getpid(), thread, kStackRequestSignal) == 0 && !blocking) ++answering;
        }
        ::closedir(tasks);
    }
    for (long waited = 0; g_requestsAnswered < answering && waited < kRequestWaitMilliseconds; ++waited) {
        sleepOneMillisecond();
    }
}

struct ThreadStart {
    void* (*routine)(void*);
    void* argument;
};

void* startWithSignalStack(void* start) {
    ThreadStart const launch = *static_cast<ThreadStart*>(start);
    delete static_cast<ThreadStart*>(start);
    giveThisThreadOwnStack();
    return launch.routine(launch.argument);
}

using ThreadCreate = int (*)(pthread_t*, pthread_attr_t const*, void* (*)(void*), void*);

// The next pthread_create after the library's: the C library's, or a
// sanitizer's that stands in front of both.
ThreadCreate cLibraryThreadCreate() {
    static ThreadCreate const create = reinterpret_cast<ThreadCreate>(::dlsym(RTLD_NEXT, "pthread_create"));
    return create;
}

}  // namespace

int createThreadWithSignalStack(pthread_t* thread, pthread_attr_t const* attributes, void* (*routine)(void*),
                                void* argument) {
    ThreadCreate const create = cLibraryThreadCreate();
    if (create == nullptr) return EAGAIN;
    if (!g_newThreadsGetStacks) return create(thread, attributes, routine, argument);
    auto* const launch = new (std::nothrow) ThreadStart{routine, argument};
    if (launch == nullptr) return create(thread, attributes, routine, argument);
    int const result = create(thread, attributes, startWithSignalStack, launch);
    if (result != 0) delete launch;
    return result;
}

namespace platform {

void prepareThreadsForStackOverflow() {
    ::pthread_once(&g_ownStackKeyOnce, makeOwnStackKey);
    stack_t const installing = mapSignalStack();  // kept until the process ends
    if (installing.ss_flags != SS_DISABLE) ::sigaltstack(&installing, nullptr);
    cLibraryThreadCreate();
    g_newThreadsGetStacks = true;
    askRunningThreads();
}

void stopPreparingNewThreads() {
    g_newThreadsGetStacks = false;
    if (g_requestHandlerSet) ::sigaction(kStackRequestSignal, &g_requestActionBefore, nullptr);
    g_requestHandlerSet = false;
}

}  // namespace platform
}  // namespace norvane_1
