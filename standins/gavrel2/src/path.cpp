// Portable part of path_t.
#include "gavrel2/path.h"
#include "gavrel2/stdpaths.h"

#include "platform.h"

#include <vector>

namespace gavrel2 {
namespace {

std::vector<std::wstring> components(std::wstring const& text) {
    std::vector<std::wstring> parts;
    std::wstring part;
    for (wchar_t c : text) {
        if (detail::isSeparator(c)) {
            parts.push_back(part);
            part.clear();
        } else {
            part += c;
        }
    }
    parts.push_back(part);
    return parts;
}

std::wstring::size_type lastSeparator(std::wstring const& text) {
    for (auto i = text.size(); i > 0; --i) {
        if (detail::isSeparator(text[i - 1])) return i - 1;
    }
    return std::wstring::npos;
}

}  // namespace

bool path_t::is_absolute() const { return detail::isAbsolute(m_text); }

path_t& path_t::append(std::wstring const& component) {
    if (!m_text.empty() && !detail::isSeparator(m_text.back())) m_text += detail::preferredSeparator();
    m_text += component;
    return *this;
}

path_t& path_t::assign(std::wstring const& text) {
    m_text = text;
    return *this;
}

path_t path_t::get_branch() const {
    auto const at = lastSeparator(m_text);
    if (at == std::wstring::npos) return path_t();
    return path_t(m_text.substr(0, at == 0 ? 1 : at));
}

std::wstring path_t::get_leaf() const {
    auto const at = lastSeparator(m_text);
    return at == std::wstring::npos ? m_text : m_text.substr(at + 1);
}

std::wstring path_t::get_ext() const {
    std::wstring const leaf = get_leaf();
    auto const dot = leaf.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : leaf.substr(dot + 1);
}

path_t& path_t::normalize() {
    std::vector<std::wstring> kept;
    auto const parts = components(m_text);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        auto const& part = parts[i];
        bool const leading = i == 0;
        if (part == L"." || (part.empty() && !leading && i + 1 != parts.size())) continue;
        if (part == L".." && !kept.empty() && kept.back() != L".." && !(kept.size() == 1 && kept[0].empty())) {
            kept.pop_back();
            continue;
        }
        kept.push_back(part);
    }
    std::wstring text;
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (i > 0) text += detail::preferredSeparator();
        text += kept[i];
    }
    m_text = text;
    return *this;
}

std::wstring path_t::as_string(bool withTrailingSeparator) const {
    if (withTrailingSeparator && !m_text.empty() && !detail::isSeparator(m_text.back())) {
        return m_text + detail::preferredSeparator();
    }
    return m_text;
}

bool create_directories(path_t const& directory) {
    std::wstring const text = directory.as_string();
    if (text.empty()) return false;
    if (path_t::is_directory(text)) return true;
    path_t const parent = directory.get_branch();
    if (!parent.empty() && parent.as_string() != text) create_directories(parent);
    detail::makeDirectory(text);
    return path_t::is_directory(text);
}

}  // namespace gavrel2
