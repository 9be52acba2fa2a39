// The path correction for 32-bit processes: System32 in their view is
// SysWOW64 on disk. Portable code only.
#include "wow64_path.h"

#include <vantix_2_18/strings.h>

#include <vector>

namespace norvane_1 {

bool replaceSystem32Component(std::wstring& path) {
    std::vector<std::wstring> parts = VANTIX_2_18::strings::split_string(path, L"\\", 0);
    bool replaced = false;
    for (auto& part : parts) {
        if (VANTIX_2_18::strings::to_upper(part) == L"SYSTEM32") {
            part = L"SysWOW64";
            replaced = true;
            break;
        }
    }
    if (!replaced) return false;
    std::wstring joined = parts.front();
    for (std::size_t i = 1; i < parts.size(); ++i) joined += L"\\" + parts[i];
    path = joined;
    return true;
}

}  // namespace norvane_1
