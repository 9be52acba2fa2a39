// Windows only: whether a process is a 32-bit one.
#pragma once

#include <string>

namespace norvane_1 {

// IsWow64Process, looked up in kernel32 at each call; false where the
// system lacks it or the query fails.
bool isWow64Process(void* process);

// Stands in for the back-trace library's is32(): a process is 32-bit
// exactly when it runs under WOW64 on this 64-bit build.
bool is32Process(void* process);

// The path a 32-bit process really loaded for a module that the system
// reports under "System32": the same file under "SysWOW64". False, with the
// path unchanged, when the reported file is not a 64-bit image, when the
// path has no System32 component or when no such file exists.
bool correctWow64ModulePath(std::wstring& path);

}  // namespace norvane_1
