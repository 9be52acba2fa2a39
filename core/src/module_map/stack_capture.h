// The stack capture of one thread of this process, for the in-process
// collection: the crashed thread's stack, read while that thread waits.
#pragma once

#include <norvane_1/handler_state.h>
#include <norvane_1/module_map.h>
#include <norvane_1/problem_report_storage.h>

#include "region_source.h"

namespace norvane_1 {

// Scans the stack of the thread whose registers are `context` for return
// addresses, walks it with the back-trace library and stores one stack for
// `info.crashedThreadId`: the clean one, with the exception's own frame, or
// the raw one when no clean one can be had. Then prunes the report's module
// list to the modules the stacks pass through. Environment:
// NORVANE1_COLLECT_RAW_STACK stores the raw stack and stops there;
// NORVANE1_KEEP_MODULEMAP keeps the module list whole. False only when the
// bitness of `info.stackProcessId` can't be told: then nothing is stored.
// `regions` is the address space the module map was read from.
bool collectThreadStack(DumpInfo const& info, Context const& context, MinidumpModuleMap const* map,
                        RegionSource& regions, ProblemReportStorage& storage);

// Readies the back-trace library for this process ahead of a crash: its
// unwinder's library is loaded and sets itself up once per process, on
// first use, a good part of the walk's cost. Any thread.
void prepareStackCapture();

}  // namespace norvane_1
