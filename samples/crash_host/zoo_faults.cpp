#include "zoo_faults.h"

#include "fault_stamp.h"
#include "faults.h"
#include "host_platform.h"

#include <norvane_1/norvane.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <thread>
#include <vector>

#define CRASH_HOST_FAULT __attribute__((noinline, no_sanitize("address", "undefined", "thread")))

namespace crash_host {
namespace {

volatile char g_depthSink = 0;
volatile bool g_deeper = true;  // always true; the compiler can't know

// Each frame keeps a kilobyte alive across the call, so the recursion can't
// become a loop and every level uses stack.
CRASH_HOST_FAULT void recurse(unsigned depth) {
    volatile char frame[1024];
    frame[depth % sizeof frame] = static_cast<char>(depth);
    if (g_deeper) recurse(depth + 1);
    g_depthSink = frame[depth % sizeof frame];
}

// Threads that wait for one moment and then all go, so their faults come
// within instructions of each other.
class StartingLine {
public:
    void wait() {
        m_waiting.fetch_add(1);
        while (!m_open.load()) {
        }
    }
    void openWhen(int waiting) {
        while (m_waiting.load() < waiting) std::this_thread::yield();
        stampFault();
        m_open = true;
    }

private:
    std::atomic<int> m_waiting{0};
    std::atomic<bool> m_open{false};
};

[[noreturn]] void faultTogether(int faulting, int sleeping) {
    std::mutex mutex;
    std::condition_variable never;
    std::vector<std::thread> threads;
    for (int i = 0; i < sleeping; ++i) {
        threads.emplace_back([&] {
            std::unique_lock<std::mutex> lock(mutex);
            never.wait(lock);
        });
    }
    StartingLine line;
    for (int i = 0; i < faulting; ++i) {
        threads.emplace_back([&line] {
            line.wait();
            accessViolation();
        });
    }
    line.openWhen(faulting);
    for (auto& thread : threads) thread.join();
    std::abort();  // not reached: the faults end the process
}

}  // namespace

CRASH_HOST_FAULT void illegalInstruction() { __builtin_trap(); }

CRASH_HOST_FAULT void breakpoint() {
    __asm__ volatile("int3");
    std::abort();  // not reached: the breakpoint is unhandled
}

void overflowStack() {
    stampFault();
    recurse(0);
    std::abort();  // not reached
}

void overflowStackOnNewThread() {
    std::thread overflowing(overflowStack);
    overflowing.join();
    std::abort();  // not reached
}

void overflowStackOnEarlierThread(void (*installOnMainThread)()) {
    std::atomic<bool> installed{false};
    std::thread overflowing([&installed] {
        while (!installed) std::this_thread::yield();
        overflowStack();
    });
    installOnMainThread();
    installed = true;
    overflowing.join();
    std::abort();  // not reached
}

void faultOnTwentyThreads() { faultTogether(20, 0); }

void faultBesideSleepingThreads() { faultTogether(2, 100); }

void faultBesideFiftyThreads() { faultTogether(1, 50); }

void faultWithFaultingCallback() {
    norvane_1::setGFGSutdownCallback([]() -> bool { accessViolation(); });
    stampFault();
    accessViolation();
}

void faultWithExitingCallback() {
    norvane_1::setGFGSutdownCallback([]() -> bool { std::exit(0); });
    stampFault();
    accessViolation();
}

void faultWhenHeldUp() {
    char const* directory = std::getenv("NORVANE_LOG_DIR");
    if (directory == nullptr) std::abort();
    std::filesystem::create_directories(std::filesystem::u8path(directory));
    holdUpTheNextCrash(directory);
    stampFault();
    accessViolation();
}

}  // namespace crash_host
