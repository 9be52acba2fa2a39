// The ShowReportCommand: a report as a person reads it, on standard output.
// First the problem (exception, assertion or live-process dump) and the
// process, then each thread's stack with its functions named
// (stack_view.h).
#pragma once

#include "command_line.h"
#include "symbolizer.h"

#include <norvane_1/norvane.h>

#include <ostream>

namespace kelmur_feedback {

void printReportView(std::ostream& out, norvane_1::ProblemReportStorage& report, Symbolizer& symbolizer);

// The program's exit code: 0 when the report was shown; 1, with the reason
// on stderr, for a report that is missing or damaged.
int showReport(ShowReportCommand const& command);

}  // namespace kelmur_feedback
