// System facts that are the same on every platform: the temporary
// directory's override and order of sources, and the executable's path cut
// into directory and name. Portable code only.
#include <norvane_1/os_layer.h>

#include "os_layer/system_facts.h"

namespace norvane_1 {
namespace os_layer {
namespace {

// No lock: the override is set by the host at its start, if at all.
std::wstring& tempDirectoryOverride() {
    static std::wstring* const value = new std::wstring();  // outlives every static destructor
    return *value;
}

// The directory (without its separator) or the name of the running program.
std::wstring executablePart(bool wantDirectory) {
    std::wstring path = platform_facts::executablePath();
    if (path.empty()) return {};
    // Trailing blanks go, but never the first character.
    while (path.size() > 1 && path.back() == L' ') path.pop_back();
    auto const separator = path.rfind(platform_facts::pathSeparator());
    if (separator == std::wstring::npos) return path;
    return wantDirectory ? path.substr(0, separator) : path.substr(separator + 1);
}

}  // namespace

std::wstring getTempDirectoryOverride() { return tempDirectoryOverride(); }

void setTempDirectory(std::wstring const& directory) { tempDirectoryOverride() = directory; }

std::wstring getTempDirectory() {
    std::wstring const chosen = getTempDirectoryOverride();
    if (!chosen.empty()) return chosen;
    std::wstring const system = platform_facts::systemTempDirectory();
    if (!system.empty()) return system;
    for (wchar_t const* name : platform_facts::tempDirectoryVariables()) {
        std::wstring const value = getEnvironmentValue(name);
        if (!value.empty()) return value;
    }
    return {};
}

std::wstring getExecutableDirectory() { return executablePart(true); }
std::wstring getExecutableName() { return executablePart(false); }

}  // namespace os_layer
}  // namespace norvane_1
