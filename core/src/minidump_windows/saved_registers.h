// The registers of an exception's context in the report's form. Windows code
// only.
#pragma once

#include <norvane_1/report_records.h>

#include <windows.h>

namespace norvane_1 {

// The order of Context's fields, not the order CONTEXT keeps them in.
Context registersOf(CONTEXT const& context);

}  // namespace norvane_1
