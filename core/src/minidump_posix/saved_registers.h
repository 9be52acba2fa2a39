// The registers of a signal's context in the report's form. POSIX code only.
#pragma once

#include <norvane_1/report_records.h>

#include <ucontext.h>

namespace norvane_1 {

Context registersOf(ucontext_t const& context);

}  // namespace norvane_1
