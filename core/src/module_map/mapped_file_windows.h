// Windows only: a whole file mapped read-only, for reading image headers.
// Header-only, because the debug-help DLL uses it as well.
#pragma once

#include "scoped_handle_windows.h"

#include <windows.h>

#include <cstddef>

namespace norvane_1 {

class MappedFile {
public:
    // Empty (null bytes) when the file can't be opened, is empty or can't be
    // mapped.
    explicit MappedFile(wchar_t const* path) {
        m_file.reset(::CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        LARGE_INTEGER size{};
        if (!m_file.valid() || !::GetFileSizeEx(m_file.get(), &size) || size.QuadPart == 0) return;
        m_mapping.reset(::CreateFileMappingW(m_file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
        if (m_mapping.valid()) m_view = ::MapViewOfFile(m_mapping.get(), FILE_MAP_READ, 0, 0, 0);
        if (m_view != nullptr) m_size = static_cast<std::size_t>(size.QuadPart);
    }
    ~MappedFile() {
        if (m_view != nullptr) ::UnmapViewOfFile(m_view);
    }
    MappedFile(MappedFile const&) = delete;
    MappedFile& operator=(MappedFile const&) = delete;

    unsigned char const* bytes() const { return static_cast<unsigned char const*>(m_view); }
    std::size_t size() const { return m_size; }

private:
    ScopedFileHandle m_file;
    ScopedHandle m_mapping;
    void* m_view = nullptr;
    std::size_t m_size = 0;
};

}  // namespace norvane_1
