// The threads' stacks of a report for a person: each frame with its module
// and, where this machine has the module's symbols, its function and line.
#pragma once

#include "symbolizer.h"

#include <norvane_1/norvane.h>

#include <ostream>
#include <string>

namespace kelmur_feedback {

// The crashed thread first, then the others in thread-id order.
// A module's file name without its directory, of either platform's path.
std::string fileNameOf(std::wstring const& path);

void printStacks(std::ostream& out, norvane_1::ProblemReportStorage& report, Symbolizer& symbolizer);

}  // namespace kelmur_feedback
