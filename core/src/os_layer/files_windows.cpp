// Files and directories on Windows. Windows code only.
#include <norvane_1/os_layer.h>

#include <windows.h>

#include <cerrno>
#include <direct.h>
#include <sys/stat.h>

namespace norvane_1 {
namespace os_layer {

bool forEachDirItem(std::wstring const& directory, forEachDirItemCallback& callback) {
    if (directory.size() < 2) return false;
    std::wstring const prefix = addTrailingSeparator(directory);
    WIN32_FIND_DATAW entry{};
    HANDLE const search = ::FindFirstFileW((prefix + L"*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return false;
    do {
        std::wstring const name = entry.cFileName;
        if (!name.empty() && name != L"." && name != L"..") callback(prefix + name);
    } while (::FindNextFileW(search, &entry));
    DWORD const error = ::GetLastError();
    ::FindClose(search);
    return error == ERROR_NO_MORE_FILES;
}

std::wstring addTrailingSeparator(std::wstring const& path) {
    return path.empty() || path.back() == L'\\' ? path : path + L'\\';
}

bool isDirectory(std::wstring const& path) {
    DWORD const attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::int64_t getFileModificationTime(std::wstring const& path) {
    if (path.empty()) return -1;
    std::wstring examined(path);
    if (examined.back() == L'\\') examined.pop_back();
    struct _stat64i32 info;
    return ::_wstat64i32(examined.c_str(), &info) == 0 ? static_cast<std::int64_t>(info.st_mtime) : -1;
}

bool deleteFile(std::wstring const& path) { return ::DeleteFileW(path.c_str()) == 1; }

bool removeDirectory(std::wstring const& path) { return ::RemoveDirectoryW(path.c_str()) == 1; }

bool createDirectory(wchar_t const* path) {
    if (path == nullptr) return false;
    return ::_wmkdir(path) == 0 || errno == EEXIST;
}

std::wstring getTempFileName(std::wstring const& directory, std::wstring const& prefix) {
    wchar_t name[MAX_PATH];
    if (::GetTempFileNameW(directory.c_str(), prefix.c_str(), 0, name) == 0) return std::wstring();
    ::DeleteFileW(name);  // the call made the file; only its name is wanted
    return name;
}

}  // namespace os_layer
}  // namespace norvane_1
