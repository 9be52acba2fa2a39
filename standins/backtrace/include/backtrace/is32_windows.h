// The back-trace library's bitness test of a process handle. Windows only.
#pragma once

namespace bt {

// Whether the process of the handle (a HANDLE) is a 32-bit one; false when
// that can't be told.
bool is32(void* process);

}  // namespace bt
