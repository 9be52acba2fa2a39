// The report's registers and the system's CONTEXT, both ways. Only the
// integer registers and the instruction pointer are in a report, and all
// the stack walker and the dump writer need. Windows code only.
#pragma once

#include <norvane_1/report_records.h>

#include <windows.h>

namespace kelmur_feedback {

norvane_1::Context contextOf(CONTEXT const& context);
CONTEXT systemContextOf(norvane_1::Context const& context);

}  // namespace kelmur_feedback
