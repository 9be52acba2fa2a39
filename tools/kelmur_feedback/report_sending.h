// Sending a report (the SendCommand).
#pragma once

#include "command_line.h"

namespace kelmur_feedback {

// The program's exit code: 0 only when the report was delivered.
int sendReport(SendCommand const& command);

}  // namespace kelmur_feedback
