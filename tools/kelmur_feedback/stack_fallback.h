// The crashed thread's stack when the report lacks it: the handler asks the
// crashed process, over its task service, to collect the stack in-process
// and rewrite the report.
#pragma once

#include "command_line.h"

#include <optional>
#include <string>

namespace kelmur_feedback {

// Whether the report holds a stack of its crashed thread.
bool holdsCrashedStack(std::wstring const& reportText);

// In collect mode 0 (a process id behind -minidump-stack), with a report
// that lacks the crashed thread's stack: asks for it and reads the report
// again. The report's text as it stands afterwards.
std::optional<std::wstring> collectMissingStack(CrashCommand const& command, std::optional<std::wstring> report);

}  // namespace kelmur_feedback
