// Speed of the in-process stack collection: the module map, the scan of
// the stack, the walk, the pruning of the module list and the debug facts
// of what is left, as a crash in collect mode 1 runs them, on a stack that
// holds 256 KB of frames. A plain program that prints its
// figures beside the target, so that it runs on both platforms:
//
//   stack_collection_bench [repetitions]
#include <norvane_1/handler_state.h>

#include "plain_handler_state.h"

#include "minidump_internal/platform.h"
#include "own_registers.h"
#include "test_environment.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDefaultRepetitions = 50;
constexpr int kFrameBytes = 1024;
constexpr int kStackBytes = 256 * 1024;
constexpr double kTargetMs = 1.0;

// Descends kStackBytes of frames, then calls `atTheDeepest` with the
// registers of the deepest frame while it is live: the stack to collect is
// this thread's own, as in the fallback's test, and stays as the registers
// saw it while the collections run below it.
template <typename Use>
__attribute__((noinline)) int descend(int depth, Use const& atTheDeepest) {
    volatile unsigned char frame[kFrameBytes - 64];
    frame[depth % sizeof frame] = static_cast<unsigned char>(depth);
    if (depth == 0) {
        norvane_test::withOwnRegisters(
            [&](norvane_1::Context const& registers, std::uint64_t) { atTheDeepest(registers); });
        return frame[0];
    }
    return descend(depth - 1, atTheDeepest) + frame[depth % sizeof frame];  // no tail call: every frame stays
}

// The collection as the worker runs it, on a report of its own each time.
class CollectingState : public norvane_test::PlainHandlerState {
public:
    bool run() override { return true; }
    void prepare(norvane_1::Context const& registers) {
        m_context = registers;
        m_storage = norvane_1::ProblemReportStorage();
    }
    norvane_1::ProblemReportStorage& report() { return m_storage; }
};

}  // namespace

int main(int argc, char** argv) {
    int const repetitions = argc > 1 ? std::atoi(argv[1]) : kDefaultRepetitions;
    if (repetitions < 1) {
        std::fprintf(stderr, "usage: stack_collection_bench [repetitions]\n");
        return 2;
    }
    norvane_test::ScratchDirectory logs("stack-collection-bench");
    norvane_test::ScopedVariable logDirectory("NORVANE_LOG_DIR", logs.path().string());
    CollectingState state;
    std::uint32_t const thread = norvane_1::platform::currentThreadId();
    std::vector<double> times;
    std::size_t frames = 0;
    std::size_t modules = 0;
    descend(kStackBytes / kFrameBytes, [&](norvane_1::Context const& registers) {
        norvane_1::DumpInfo info;
        info.crashedThreadId = thread;
        info.stackProcessId = norvane_1::platform::currentProcessId();
        info.exception.address = registers.EIP;
        for (int i = 0; i < repetitions; ++i) {
            state.prepare(registers);
            Clock::time_point const start = Clock::now();
            state.inProcessStackCollect(info);
            times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
            frames = state.report().getStackFramesMap()[thread].size();
            modules = state.report().getModuleInfo().size();
        }
    });
    std::sort(times.begin(), times.end());
    std::printf(
        "stack_collection_bench: %d collections of a thread with %d KB of frames (%zu frames, %zu modules kept)\n",
        repetitions, kStackBytes / 1024, frames, modules);
    std::printf("  %-44s median %8.3f ms   fastest %8.3f ms   target <= %.1f ms (native Release)\n",
                "in-process collection", times[times.size() / 2], times.front(), kTargetMs);
    return 0;
}
