// What the portable system facts ask of the platform. system_facts_posix.cpp
// and system_facts_windows.cpp implement it.
#pragma once

#include <string>
#include <vector>

namespace norvane_1 {
namespace os_layer {
namespace platform_facts {

// The system's own temporary directory, before any environment variable;
// empty when it has none to give (Linux has no call of its own).
std::wstring systemTempDirectory();
// The environment variables that name a temporary directory, in the order
// they are tried.
std::vector<wchar_t const*> tempDirectoryVariables();
// The running program's full path; empty on failure.
std::wstring executablePath();
wchar_t pathSeparator();

}  // namespace platform_facts
}  // namespace os_layer
}  // namespace norvane_1
