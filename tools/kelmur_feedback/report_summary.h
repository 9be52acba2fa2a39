// What the handler tells a person about a crash: the facts of the report the
// library wrote, and of the command line it was started with.
#pragma once

#include "command_line.h"

#include <optional>
#include <ostream>
#include <string>

namespace kelmur_feedback {

// The report file's text (UTF-8 on disk), with LF line ends; nothing if it
// can't be read.
std::optional<std::wstring> readReportText(std::string const& path);

// A few lines for a person. Without a report text only the command's facts
// are shown; a damaged report is said to be so, never thrown about.
void printSummary(std::ostream& out, CrashCommand const& command, std::optional<std::wstring> const& reportText);

}  // namespace kelmur_feedback
