// The stacks of a live process's threads, read from outside while the
// process runs on. outside_stacks_posix.cpp and outside_stacks_windows.cpp
// implement it.
//
// Each thread is stopped only while its own stack is walked, and set going
// again before the next one: the process never stands still as a whole,
// and whatever fails, every thread stopped here runs on.
#pragma once

#include <norvane_1/report_records.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kelmur_feedback {

struct ThreadStack {
    std::uint32_t threadId = 0;
    norvane_1::Context registers;
    norvane_1::CleanStack frames;  // innermost first, each of kind 2 (found by unwind information)
};

struct OutsideStacks {
    std::vector<ThreadStack> threads;
    std::string error;  // why threads are missing; empty when none is
};

// Threads to walk from given registers rather than from where they stand:
// the crashed thread, parked inside the library, is walked from its fault.
using StartingPoints = std::map<std::uint32_t, norvane_1::Context>;

// Threads that end meanwhile are left out. A thread of `startAt` has the
// given registers as its own in the result.
OutsideStacks collectThreadStacks(std::uint32_t processId, StartingPoints const& startAt = {});

}  // namespace kelmur_feedback
