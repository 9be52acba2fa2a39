// The ExportJsonCommand: a report file as JSON (report_json.h), on standard
// output or into a file, for people and scripts rather than the library.
#pragma once

#include "command_line.h"

namespace kelmur_feedback {

// The program's exit code: 0 when the JSON was written; 1, with the reason on
// stderr, for a report that can't be read or a JSON file that can't be written.
int exportJson(ExportJsonCommand const& command);

}  // namespace kelmur_feedback
