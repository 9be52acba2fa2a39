// What the exception filter receives on Windows: the system's own
// EXCEPTION_POINTERS (exception record and register context).
#pragma once

struct _EXCEPTION_POINTERS;

namespace norvane_1 {

using ExceptionData = ::_EXCEPTION_POINTERS;

}  // namespace norvane_1
