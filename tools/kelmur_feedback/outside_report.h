// What the tool adds to a report from outside the process it describes: the
// process's modules, and each thread's registers and stack with its frames
// named after their modules. Used for on-demand reports and after a crash.
#pragma once

#include "outside_stacks.h"

#include <norvane_1/problem_report_storage.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kelmur_feedback {

void addOutsideModules(norvane_1::ProblemReportStorage& report, std::uint32_t processId);

// The threads whose stacks went into the report with frames, and what the collection
// said went wrong (empty: nothing).
struct AddedStacks {
    std::vector<std::uint32_t> threadIds;
    std::string error;
    bool gotThread(std::uint32_t threadId) const;
};

// A thread the report has a context of already keeps it.
AddedStacks addOutsideStacks(norvane_1::ProblemReportStorage& report, std::uint32_t processId,
                             StartingPoints const& startAt = {});

}  // namespace kelmur_feedback
