// Speed of the whole-report conversions on a large report (about 1 MB):
// 300 modules, 8 threads with contexts, clean stacks of 200 frames and raw
// stacks, a 100-line premortal log and 20 custom sections.
//
// Target in a Release build: at least 50 MB/s each way. Throughput is given
// in bytes of the report's UTF-8 text.
#include "sample_reports.h"

#include <benchmark/benchmark.h>

namespace {

struct LargeReport {
    LargeReport()
        : report(norvane_test::makeLargeReport()),
          text(report.toString()),
          utf8Bytes(static_cast<std::int64_t>(norvane_test::toUtf8(text).size())) {}
    norvane_1::ProblemReportStorage report;
    std::wstring text;
    std::int64_t utf8Bytes;
};

LargeReport const& largeReport() {
    static LargeReport const instance;
    return instance;
}

void BM_ToString(benchmark::State& state) {
    auto const& sample = largeReport();
    for (auto _ : state) {
        norvane_1::ProblemReportStorage report = sample.report;
        benchmark::DoNotOptimize(report.toString());
    }
    state.SetBytesProcessed(state.iterations() * sample.utf8Bytes);
    state.counters["report_bytes"] = static_cast<double>(sample.utf8Bytes);
}

void BM_FromString(benchmark::State& state) {
    auto const& sample = largeReport();
    for (auto _ : state) {
        norvane_1::ProblemReportStorage report;
        benchmark::DoNotOptimize(report.fromString(sample.text));
    }
    state.SetBytesProcessed(state.iterations() * sample.utf8Bytes);
}

// The copy inside BM_ToString is part of what a caller pays when it keeps
// its own report; this shows how much of the time it is.
void BM_CopyOnly(benchmark::State& state) {
    auto const& sample = largeReport();
    for (auto _ : state) {
        norvane_1::ProblemReportStorage report = sample.report;
        benchmark::DoNotOptimize(report);
    }
}

}  // namespace

BENCHMARK(BM_ToString)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromString)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CopyOnly)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
