#include "faults.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

// The sanitizer builds must see the CPU fault itself: their own checks would
// report the division or the null write (a race, when twenty threads make
// it) first and end the process their way.
#define CRASH_HOST_FAULT __attribute__((noinline, no_sanitize("address", "undefined", "thread")))

namespace crash_host {
namespace {

int* volatile g_nowhere = nullptr;
volatile int g_dividend = 7;  // a constant 1 / x would be compiled to a comparison
volatile int g_zero = 0;
volatile int g_sink = 0;

// A base class that calls its pure function while it is being constructed,
// when the object is not yet anything more derived.
class Shape {
public:
    Shape() { describe(); }
    virtual ~Shape() = default;
    Shape(Shape const&) = delete;
    Shape& operator=(Shape const&) = delete;

    __attribute__((noinline)) void describe() { g_sink = area(); }
    virtual int area() const = 0;
};

class Square final : public Shape {
public:
    int area() const override { return 1; }
};

Shape* volatile g_shape = nullptr;

}  // namespace

CRASH_HOST_FAULT void accessViolation() {
    *g_nowhere = 42;
    std::abort();  // not reached
}

CRASH_HOST_FAULT void divideByZero() {
    g_sink = g_dividend / g_zero;
    std::abort();  // not reached
}

void callAbort() { std::abort(); }

void uncaughtException() { throw std::runtime_error("no one catches this"); }

void corruptHeap() {
    // Too large for the per-thread cache, which checks without the lock.
    void* volatile block = std::malloc(5000);
    std::free(block);
    std::free(block);
    accessViolation();
}

void pureVirtualCall() {
    g_shape = new Square();
    std::abort();  // not reached
}

void spinFor(std::chrono::microseconds delay) {
    auto const until = std::chrono::steady_clock::now() + delay;
    while (std::chrono::steady_clock::now() < until) {
    }
}

void faultOnTwoThreads(void (*how)(), std::chrono::microseconds secondThreadDelay) {
    // A spinning barrier: both threads are running when it opens, so the
    // two faults come within instructions of each other, or the delay apart.
    std::atomic<int> waiting{2};
    auto fault = [&waiting, how](std::chrono::microseconds delay) {
        waiting.fetch_sub(1);
        while (waiting.load() != 0) {
        }
        spinFor(delay);
        how();
    };
    std::thread first(fault, std::chrono::microseconds(0));
    std::thread second(fault, secondThreadDelay);
    first.join();
    second.join();
    std::abort();  // not reached
}

}  // namespace crash_host
