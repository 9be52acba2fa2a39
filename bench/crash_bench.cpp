// crash_bench: how long crash handling takes, seen from outside the crashed
// process. It runs the sample host a number of times in each of the ways
// below and prints the median, minimum and maximum of
//
//   fault -> report written    the host's fault to the last write of
//                              crash_info.txt
//   fault -> handler started   the host's fault to the start of the
//                              handler's main() (its "started-us" record)
//   fault -> process end       the host's fault to the moment its end wakes
//                              this program
//   handler end -> process end with quick_handler: what the crash takes
//                              after its handler has ended
//   less the handler's start  under Wine, with quick_handler: fault ->
//                              process end less the time from the report's
//                              write to the handler's main(), which is
//                              Wine's own start of a process; the target
//                              excepts it
//
// The ways:
//  - "crash_host call-chain", three calls deep, in collect mode 1
//    (NORVANEMINIDUMP1_INPROCESS_COLLECT): the report the library writes is
//    complete, with the clean stack and the modules it passes through; the
//    handler leaves it alone;
//  - the same as configured by default: the reference handler reads every
//    thread's stack from outside and completes the report; the time is the
//    fault to that final write;
//  - the same with "crash_host fifty-threads": 50 threads asleep beside the
//    faulting one, each stack read from outside;
//  - collect mode 1 again, with quick_handler, a handler that exits at once:
//    the library's own cost from the fault to the end of the process.
//    Natively the report's write is not watched in this way: the watching
//    thread would wake in the middle of the crash and take a processor from
//    it, which here moved the process end by 0.1 to 0.4 ms.
//
// The host runs on for CRASH_HOST_SETTLE_MS between its install and its
// fault (20 ms; set in this program's environment, it stands), as a product
// runs a while before it crashes: what the install started in the
// background (the worker's preparations, a few milliseconds under Wine) is
// done by then, and the times are those of the crash alone. The longer the
// host runs before its fault, the longer the other processor has been idle,
// and the slower the threads the crash wakes start on it: natively 1.4 ms
// rather than 1.0 ms to the report after 200 ms.
//
// The targets are the native Release ones; the Windows build, which runs
// under Wine, is given five times each.
//
// Usage: crash_bench [runs]   (default 31 natively, where a run is a few
//                             milliseconds and the median of 15 moved by
//                             0.3 ms from one invocation to the next; 15
//                             under Wine, where the default mode's runs
//                             take seconds each)
//
// crash_host and kelmur-feedback are found beside this program. Every time
// comes from the system clock; the report's is when this program is told
// of its last write (report_watch.h).
#include "child_process.h"
#include "cleared_variables.h"
#include "report_watch.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kDefaultRuns = NORVANE_BENCH_TARGET_FACTOR > 1 ? 15 : 31;
constexpr double kCompleteReportTargetMs = 1.2;  // native Release medians
constexpr double kCallbackReportTargetMs = 15.0;
constexpr double kManyThreadsReportTargetMs = 50.0;
constexpr double kProcessEndTargetMs = 2.0;
constexpr std::chrono::seconds kHostTimeLimit{60};
constexpr char kSettleMilliseconds[] = "20";
constexpr double kTargetFactor = NORVANE_BENCH_TARGET_FACTOR;

// Wine's own process start is excepted from the targets under Wine.
constexpr bool kHandlerStartExcepted = kTargetFactor > 1;

// What a run gives, in milliseconds; the last two only with quick_handler.
enum Figure { reportWritten, handlerStarted, processEnd, afterHandlerEnd, processEndLessHandlerStart, kFigureCount };
char const* const kFigures[kFigureCount] = {"fault -> report written", "fault -> handler started",
                                            "fault -> process end", "handler end -> process end",
                                            "  less the handler's start"};

// The number behind `prefix` on the first line that starts with it.
std::optional<std::int64_t> recordedMicroseconds(fs::path const& file, std::string const& prefix) {
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        if (line.rfind(prefix, 0) == 0) return std::stoll(line.substr(prefix.size()));
    }
    return std::nullopt;
}

struct Way {
    char const* kind;
    bool inProcess;
    bool quickHandler;
    char const* description;
    double targetMs;  // native
    Figure targetOf;
};

Way const kWays[] = {
    {"call-chain", true, false, "collect mode 1: the library's complete report", kCompleteReportTargetMs,
     reportWritten},
    {"call-chain", false, false, "default mode: the final report, stacks read from outside", kCallbackReportTargetMs,
     reportWritten},
    {"fifty-threads", false, false, "default mode, 51 threads: every thread's stack from outside",
     kManyThreadsReportTargetMs, reportWritten},
    {"call-chain", true, true, "collect mode 1, a handler that exits at once", kProcessEndTargetMs,
     kHandlerStartExcepted ? processEndLessHandlerStart : processEnd},
};

norvane_test::ChildOptions hostOptions(fs::path const& directory, Way const& way) {
    norvane_test::ChildOptions options;
    options.program = norvane_test::programBesideThisOne("crash_host");
    options.arguments = {way.kind};
    options.standardOutput = directory / "output.txt";
    for (char const* variable : norvane_test::kClearedVariables) options.environment[variable] = std::nullopt;
    options.environment["NORVANE_LOG_DIR"] = (directory / "log").u8string();
    options.environment["KELMUR_FEEDBACK_RECORD"] = (directory / "handler.txt").u8string();
    options.environment["CRASH_HOST_TIMESTAMP_FILE"] = (directory / "fault.txt").u8string();
    if (std::getenv("CRASH_HOST_SETTLE_MS") == nullptr)
        options.environment["CRASH_HOST_SETTLE_MS"] = kSettleMilliseconds;
    if (way.inProcess) {
        options.environment["NORVANEMINIDUMP1_INPROCESS_COLLECT"] = "1";
        // In mode 1 the report the library writes is the one timed.
        options.environment["KELMUR_FEEDBACK_KEEP_REPORT"] = "1";
    }
    if (way.quickHandler) {
        options.environment["NORVANE_CRASH_HANDLER"] = norvane_test::programBesideThisOne("quick_handler").u8string();
    }
    return options;
}

// The figures of one run, as kFigures names them, each where the way has
// it; none if the run failed.
using RunFigures = std::vector<std::optional<double>>;

RunFigures runOnce(fs::path const& directory, Way const& way) {
    fs::create_directories(directory / "log");
    std::optional<crash_bench::ReportWatch> watch;
    if (!way.quickHandler || kHandlerStartExcepted) watch.emplace(directory / "log" / "crash_info.txt");
    norvane_test::ChildProcess host(hostOptions(directory, way));
    norvane_test::ChildOutcome const outcome = host.wait(kHostTimeLimit);
    auto const ended = std::chrono::duration_cast<std::chrono::microseconds>(
                           std::chrono::system_clock::now().time_since_epoch())
                           .count();
    if (!outcome.finished || outcome.exitCode != 3) {
        std::cerr << "crash_bench: the host " << norvane_test::describe(outcome) << '\n';
        return {};
    }
    auto const fault = recordedMicroseconds(directory / "fault.txt", "fault-us: ");
    auto const handler = recordedMicroseconds(directory / "handler.txt", "started-us: ");
    std::optional<std::int64_t> report;
    if (watch) report = watch->lastWrite();
    auto const handlerEnd = recordedMicroseconds(directory / "handler.txt", "ended-us: ");
    if (!fault || !handler || (watch && !report) || (way.quickHandler && !handlerEnd)) {
        std::cerr << "crash_bench: a time is missing in " << directory.u8string() << '\n';
        return {};
    }
    auto const between = [](std::int64_t from, std::int64_t to) { return (to - from) / 1000.0; };
    RunFigures figures(kFigureCount);
    figures[handlerStarted] = between(*fault, *handler);
    figures[processEnd] = between(*fault, ended);
    if (report) {
        std::int64_t const written = report.value_or(0);
        figures[reportWritten] = between(*fault, written);
        if (handlerEnd) figures[processEndLessHandlerStart] = between(*fault, ended) - between(written, *handler);
    }
    if (handlerEnd) figures[afterHandlerEnd] = between(*handlerEnd, ended);
    return figures;
}

void printFigures(char const* label, std::vector<double> values, char const* target = "") {
    std::sort(values.begin(), values.end());
    std::size_t const middle = values.size() / 2;
    double const median = values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
    std::printf("  %-26s %8.2f %8.2f %8.2f   %s\n", label, median, values.front(), values.back(), target);
}

// The runs of one way; false if any failed.
bool measure(Way const& way, int runs, fs::path const& scratch) {
    std::vector<double> times[kFigureCount];
    for (int run = 0; run < runs; ++run) {
        fs::path const directory = scratch / (std::to_string(&way - kWays) + "-" + std::to_string(run));
        RunFigures const figures = runOnce(directory, way);
        for (std::size_t i = 0; i < figures.size(); ++i) {
            if (figures[i]) times[i].push_back(*figures[i]);
        }
    }
    std::printf("%s: %zu of %d runs\n", way.description, times[processEnd].size(), runs);
    if (times[processEnd].empty()) return false;
    char target[64] = "";
    std::snprintf(target, sizeof target, "target <= %.1f", way.targetMs * kTargetFactor);
    for (int i = 0; i < kFigureCount; ++i) {
        if (!times[i].empty()) printFigures(kFigures[i], times[i], i == way.targetOf ? target : "");
    }
    return times[processEnd].size() == static_cast<std::size_t>(runs);
}

fs::path scratchDirectory() {
    auto const stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    return fs::temp_directory_path() / ("norvane-crash-bench-" + std::to_string(stamp));
}

}  // namespace

int main(int argc, char** argv) {
    int const runs = argc > 1 ? std::atoi(argv[1]) : kDefaultRuns;
    if (runs < 1) {
        std::cerr << "usage: crash_bench [runs]\n";
        return 2;
    }
    fs::path const scratch = scratchDirectory();
    std::printf("crash_bench: crash_host, %d runs each way; milliseconds\n", runs);
    std::printf("  %-26s %8s %8s %8s\n", "", "median", "min", "max");
    bool complete = true;
    for (Way const& way : kWays) complete = measure(way, runs, scratch) && complete;
    std::error_code ignored;
    fs::remove_all(scratch, ignored);
    return complete ? 0 : 1;
}
