// Windows only: whether a process is a 32-bit one.
#pragma once

#include <string>

namespace norvane_1 {

// IsWow64Process, looked up in kernel32 at each call; false where the
// system lacks it or the query fails. (Whether the process is a 32-bit one
// is the back-trace library's is32.)
bool isWow64Process(void* process);

// The path a 32-bit process really loaded for a module that the system
// reports under "System32": the same file under "SysWOW64". False, with the
// path unchanged, when the reported file is not a 64-bit image, when the
// path has no System32 component or when no such file exists.
bool correctWow64ModulePath(std::wstring& path);

}  // namespace norvane_1
