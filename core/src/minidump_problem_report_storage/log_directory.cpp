// Portable code only.
#include "log_directory.h"

#include "os_layer/system_facts.h"

#include <norvane_log/log_dir.h>

namespace norvane_1 {
namespace {

bool endsWithSeparator(std::wstring const& path) {
    return !path.empty() && (path.back() == L'\\' || path.back() == L'/');
}

}  // namespace

std::wstring logDirectory() {
    wchar_t const* directory = nullptr;
    norvane_1_getLogDir(&directory);
    return directory ? std::wstring(directory) : std::wstring();
}

std::wstring directoryOrLogDirectory(wchar_t const* directory) {
    if (directory == nullptr) return logDirectory();
    std::wstring path(directory);
    if (!path.empty() && !endsWithSeparator(path)) path += os_layer::platform_facts::pathSeparator();
    return path;
}

}  // namespace norvane_1
