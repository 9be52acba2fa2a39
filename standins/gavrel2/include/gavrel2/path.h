// Paths of the general helper library: a wide string with the platform's
// separators ("\" on Windows, where "/" is accepted too; "/" elsewhere).
#pragma once

#include <string>

namespace gavrel2 {

class path_t {
public:
    path_t() = default;
    path_t(std::wstring const& text) : m_text(text) {}
    path_t(wchar_t const* text) : m_text(text ? text : L"") {}

    bool empty() const { return m_text.empty(); }
    bool is_absolute() const;
    // Appends a component, with one separator between.
    path_t& append(std::wstring const& component);
    path_t& assign(std::wstring const& text);
    // The directory part: everything before the last separator.
    path_t get_branch() const;
    // The last component.
    std::wstring get_leaf() const;
    // The extension of the last component, without the dot.
    std::wstring get_ext() const;
    // Turns separators into the platform's and resolves "." and ".." components.
    path_t& normalize();
    // The text. `withTrailingSeparator` adds a separator unless there is one.
    std::wstring as_string(bool withTrailingSeparator = false) const;

    static bool exists(std::wstring const& path);
    static bool is_directory(std::wstring const& path);

private:
    std::wstring m_text;
};

}  // namespace gavrel2
