// load_bench: what the library costs a program that loads it and installs
// crash handling but never crashes. It runs itself a number of times as a
// child, each child loading the library into a fresh process, and prints the
// median, minimum and maximum of
//
//   load                the library's loading: dlopen / LoadLibrary
//   threads at load     threads of the process after it, less those before
//   memory at load      resident set (working set) after it, less before
//   install             setUnhandledExceptionHandler(nullptr), the first call
//
// and, from one more child that stays idle for some seconds with crash
// handling installed, the process's CPU time per idle second: what the hook
// upkeep costs. Its count starts a second after the install, when the
// worker's one-time preparations (the libraries it loads for a crash's
// stack walk) are done: they are the install's, not the idle process's. The program is a C++ host like any other: the C++ run-time
// library is loaded and its standard streams are set up (<iostream>) before
// the first figure is taken. A host without streams pays some 600 KiB more
// at load, for the streams and locales the logging library sets up.
//
// Usage: load_bench [runs] [idle seconds]   (defaults 15 and 5)
#include "child_process.h"
#include "cleared_variables.h"
#include "load_probe.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// Native Release; under Wine the figures may be five times as large.
constexpr double kLoadTargetMs = 1.0;
constexpr double kThreadsTarget = 0;
constexpr double kMemoryTargetKiB = 1024;
constexpr double kInstallTargetMs = 1.0;
// Not a target: the upkeep is designed to wake once a second, and a wake
// costs what the system takes to schedule a thread, beyond its six hook
// calls and one sleep. The fastest peer, which never wakes, for comparison.
constexpr double kIdlePeerMsPerSecond = 0.016;
constexpr std::chrono::seconds kIdleSettle{1};

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// One child: loads, installs, optionally idles, and prints its figures.
int measureOnce(int idleSeconds) {
    load_bench::ProcessFigures const before = load_bench::processFigures();
    Clock::time_point const loadStart = Clock::now();
    void* const library = load_bench::loadLibrary();
    double const loadMs = millisecondsSince(loadStart);
    load_bench::ProcessFigures const loaded = load_bench::processFigures();
    using Install = void* (*)(wchar_t const*);
    auto const install = reinterpret_cast<Install>(
        library ? load_bench::librarySymbol(library, "_ZN9norvane_128setUnhandledExceptionHandlerEPKw") : nullptr);
    if (install == nullptr) return 1;
    Clock::time_point const installStart = Clock::now();
    install(nullptr);
    double const installMs = millisecondsSince(installStart);
    double idleMsPerSecond = 0;
    if (idleSeconds > 0) {
        std::this_thread::sleep_for(kIdleSettle);
        double const idleStart = load_bench::processFigures().cpuMs;
        std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
        idleMsPerSecond = (load_bench::processFigures().cpuMs - idleStart) / idleSeconds;
    }
    std::printf("%f %d %f %f %f\n", loadMs, loaded.threads - before.threads, loaded.residentKiB - before.residentKiB,
                installMs, idleMsPerSecond);
    return 0;
}

// The five figures of one child, or none if it failed.
std::vector<double> runChild(fs::path const& output, int idleSeconds) {
    norvane_test::ChildOptions options;
    options.program = norvane_test::programBesideThisOne("load_bench");
    options.arguments = {"--child", std::to_string(idleSeconds)};
    options.standardOutput = output;
    // A variable of the caller's shell would turn handling off or change it.
    for (char const* variable : norvane_test::kClearedVariables) options.environment[variable] = std::nullopt;
    norvane_test::ChildOutcome const outcome = norvane_test::ChildProcess(options).wait(std::chrono::seconds(120));
    std::vector<double> figures(5);
    std::ifstream in(output);
    for (double& figure : figures) in >> figure;
    if (!outcome.finished || outcome.exitCode != 0 || !in) figures.clear();
    return figures;
}

void printFigure(char const* name, std::vector<double> values, double target, char const* unit, bool isTarget = true) {
    std::sort(values.begin(), values.end());
    std::printf("  %-18s median %9.3f  min %9.3f  max %9.3f %-5s  ", name, values[values.size() / 2], values.front(),
                values.back(), unit);
    if (!isTarget) {
        std::printf("the fastest peer: %g %s\n", target, unit);
        return;
    }
    std::printf("target <= %g %s: %s\n", target, unit, values[values.size() / 2] <= target ? "met" : "MISSED");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--child") return measureOnce(std::atoi(argv[2]));
    int const runs = std::max(1, argc > 1 ? std::atoi(argv[1]) : 15);
    int const idleSeconds = std::max(1, argc > 2 ? std::atoi(argv[2]) : 5);
    fs::path const output = fs::temp_directory_path() /
                            ("load_bench_" + std::to_string(Clock::now().time_since_epoch().count()));
    std::vector<std::vector<double>> columns(5);
    for (int run = 0; run <= runs; ++run) {
        // The last child idles; only its CPU time is taken.
        std::vector<double> const figures = runChild(output, run < runs ? 0 : idleSeconds);
        if (figures.empty()) {
            std::fprintf(stderr, "load_bench: a child could not load the library or install\n");
            return 1;
        }
        for (std::size_t i = 0; i < 4 && run < runs; ++i) columns[i].push_back(figures[i]);
        if (run == runs) columns[4].push_back(figures[4]);
    }
    fs::remove(output);
    double const times = NORVANE_BENCH_TARGET_FACTOR;
    std::printf("load_bench, %d runs (idle: %d s)%s\n", runs, idleSeconds, times > 1 ? ", targets x5 here" : "");
    printFigure("load", columns[0], kLoadTargetMs * times, "ms");
    printFigure("threads at load", columns[1], kThreadsTarget, "");
    printFigure("memory at load", columns[2], kMemoryTargetKiB * times, "KiB");
    printFigure("install", columns[3], kInstallTargetMs * times, "ms");
    printFigure("idle CPU", columns[4], kIdlePeerMsPerSecond, "ms/s", false);
    return 0;
}
