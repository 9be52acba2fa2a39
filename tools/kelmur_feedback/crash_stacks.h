// The stacks of a crashed process, when the library left them to the
// handler (collect mode 0, a process id behind -minidump-stack): every
// thread's, read from outside, the crashed thread's from its fault (the
// report's context) rather than from inside the library's hook where it
// waits. Only when that fails (no permission, an unreadable process) is the
// crashed process asked to collect its own stack (stack_fallback.h). The
// creation log says which way was taken.
#pragma once

#include "command_line.h"

#include <optional>
#include <string>

namespace kelmur_feedback {

// The report's text as it stands afterwards.
std::optional<std::wstring> collectCrashStacks(CrashCommand const& command, std::optional<std::wstring> report);

}  // namespace kelmur_feedback
