#include "vantix_2_18/strings.h"

namespace VANTIX_2_18 {
namespace strings {

std::vector<std::wstring> split_string(std::wstring const& text, std::wstring const& delimiter, int /*flags*/) {
    std::vector<std::wstring> parts;
    if (delimiter.empty()) {
        parts.push_back(text);
        return parts;
    }
    std::wstring::size_type start = 0;
    for (;;) {
        auto const hit = text.find(delimiter, start);
        if (hit == std::wstring::npos) break;
        parts.push_back(text.substr(start, hit - start));
        start = hit + delimiter.size();
    }
    parts.push_back(text.substr(start));
    return parts;
}

void replace_all(std::wstring& text, std::wstring const& what, std::wstring const& with) {
    if (what.empty()) return;
    std::wstring::size_type at = 0;
    while ((at = text.find(what, at)) != std::wstring::npos) {
        text.replace(at, what.size(), with);
        at += with.size();
    }
}

std::wstring to_upper(std::wstring const& text) {
    std::wstring out(text);
    for (auto& c : out) {
        if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
    }
    return out;
}

}  // namespace strings
}  // namespace VANTIX_2_18
