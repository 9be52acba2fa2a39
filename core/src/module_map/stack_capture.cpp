// The stack capture, in its numbered steps. Portable code only.
#include "stack_capture.h"

#include "region_source.h"
#include "stack_scan.h"

#include <backtrace/bt_helper.h>

#include <gavrel2/environment.h>

namespace norvane_1 {
namespace {

constexpr int kThisProcess = 0;
constexpr int kBits32 = 1;
constexpr int kBits64 = 2;
constexpr int kCodeRange = 1;
constexpr std::uint32_t kExceptionFrame = 4;

bool isSet(wchar_t const* variable) { return !gavrel2::get_environ_value(variable).empty(); }

RawStack scanThreadStack(std::uint64_t stackPointer, RegionSource& regions, MinidumpModuleMap const& map) {
    StackExtent extent;
    if (!findStackExtent(regions, stackPointer, extent)) return RawStack();
    return scanStack(regions, extent, map);
}

StackFrame exceptionFrame(Exception const& exception) {
    StackFrame frame;
    frame.address = exception.address;
    frame.stackAddress = 0;
    frame.module = exception.module;
    frame.kind = kExceptionFrame;
    return frame;
}

}  // namespace

void prepareStackCapture() { bt::createBtHelper()->prepare(kThisProcess); }

bool collectThreadStack(DumpInfo const& info, Context const& context, MinidumpModuleMap const* map,
                        RegionSource& regions, ProblemReportStorage& storage) {
    // 1.-2. The stack's end, and the scan for return addresses.
    RawStack const rawStack = scanThreadStack(context.ESP, regions, *map);

    // 3. A raw stack only, asked for.
    if (isSet(L"NORVANE1_COLLECT_RAW_STACK")) {
        storage.addStack(rawStack, info.crashedThreadId);
        return true;
    }

    // 4.-7. The clean stack, by the back-trace library; the raw one where it can't.
    gavrel2::sptr_t<bt::IBtHelper> helper = bt::createBtHelper();
    helper->prepare(kThisProcess);
    CleanStack frames;
    bool clean = false;
    if (helper->isReady()) {
        for (std::uint32_t i = 0; i < map->count; ++i) {
            MinidumpAddressRange const& range = map->ranges[i];
            helper->createModule()->describe(range.base, range.end, 0, range.name, kCodeRange);
        }
        int const is32 = bt::is32pid(info.stackProcessId);
        if (is32 == -1) return false;
        clean = helper->walkStack(is32 == 1 ? kBits32 : kBits64, context, rawStack, frames);
    }

    // 8. The exception's own frame comes first: its stack address is 0.
    if (clean) {
        if (info.exception.address != 0) frames.push_back(exceptionFrame(info.exception));
        storage.addStack(frames, info.crashedThreadId);
    } else {
        storage.addStack(rawStack, info.crashedThreadId);
    }

    // 9. Only the modules the stack passes through stay in the report.
    helper.reset();
    if (!isSet(L"NORVANE1_KEEP_MODULEMAP")) storage.SyncModuleMapWithStackMap();
    return true;
}

}  // namespace norvane_1
