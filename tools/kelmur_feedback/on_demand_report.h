// Completing the report of a live process that the library wrote on demand
// (the CollectCommand): the process's modules and product facts, and, when
// asked, the stack of each of its threads, read from outside while the
// process runs on.
#pragma once

#include "command_line.h"

namespace kelmur_feedback {

// The program's exit code: 0 when the report was completed and written.
int completeOnDemandReport(CollectCommand const& command);

}  // namespace kelmur_feedback
