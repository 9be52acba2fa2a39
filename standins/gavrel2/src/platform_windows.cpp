// Windows side of the stand-in: paths, files, environment, shared libraries.
#include "gavrel2/environment.h"
#include "gavrel2/path.h"
#include "gavrel2/shared_lib.h"
#include "gavrel2/stdpaths.h"

#include "platform.h"

#include <windows.h>

#include <vector>

namespace gavrel2 {
namespace detail {

wchar_t preferredSeparator() { return L'\\'; }
bool isSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

bool isAbsolute(std::wstring const& path) {
    bool const drive = path.size() >= 3 && path[1] == L':' && isSeparator(path[2]);
    bool const unc = path.size() >= 2 && isSeparator(path[0]) && isSeparator(path[1]);
    return drive || unc;
}

std::FILE* openFile(std::wstring const& path, char const* mode) {
    std::wstring const wideMode(mode, mode + std::char_traits<char>::length(mode));
    return ::_wfopen(path.c_str(), wideMode.c_str());
}

bool makeDirectory(std::wstring const& path) { return ::CreateDirectoryW(path.c_str(), nullptr) != FALSE; }

}  // namespace detail

bool path_t::exists(std::wstring const& path) {
    return !path.empty() && ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool path_t::is_directory(std::wstring const& path) {
    if (path.empty()) return false;
    DWORD const attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::wstring get_environ_value(std::wstring const& name) {
    DWORD const size = ::GetEnvironmentVariableW(name.c_str(), nullptr, 0);
    if (size == 0) return std::wstring();
    std::vector<wchar_t> value(size);
    DWORD const got = ::GetEnvironmentVariableW(name.c_str(), value.data(), size);
    return got == 0 || got >= size ? std::wstring() : std::wstring(value.data(), got);
}

bool shared_lib_t::initialize(std::wstring const& name, path_t const& directory) {
    uninitialize();
    path_t file(directory);
    file.append(name + L".dll");
    m_handle = ::LoadLibraryExW(file.as_string().c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    return m_handle != nullptr;
}

void shared_lib_t::uninitialize() {
    if (m_handle != nullptr) ::FreeLibrary(static_cast<HMODULE>(m_handle));
    m_handle = nullptr;
}

void* shared_lib_t::get_symbol(std::wstring const& name) const {
    if (m_handle == nullptr) return nullptr;
    std::string const narrow(name.begin(), name.end());
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(m_handle), narrow.c_str()));
}

namespace stdpaths {

path_t get_module_dir(void const* address) {
    HMODULE module = nullptr;
    if (!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                              static_cast<LPCWSTR>(address), &module)) {
        return path_t();
    }
    wchar_t buffer[MAX_PATH];
    DWORD const length = ::GetModuleFileNameW(module, buffer, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return path_t();
    return path_t(std::wstring(buffer, length)).get_branch();
}

path_t get_program_path() {
    wchar_t buffer[MAX_PATH];
    DWORD const length = ::GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return path_t();
    return path_t(std::wstring(buffer, length));
}

path_t get_temp_dir() {
    wchar_t buffer[MAX_PATH + 1];
    DWORD length = ::GetTempPathW(MAX_PATH + 1, buffer);
    if (length == 0 || length > MAX_PATH) return path_t(L"C:\\Windows\\Temp");
    while (length > 3 && detail::isSeparator(buffer[length - 1])) --length;
    return path_t(std::wstring(buffer, length));
}

}  // namespace stdpaths

}  // namespace gavrel2
