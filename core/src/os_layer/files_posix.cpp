// Files and directories on POSIX. POSIX code only.
#include <norvane_1/os_layer.h>

#include "scoped_descriptor_posix.h"

#include <vantix_2_18/utf.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace norvane_1 {
namespace os_layer {
namespace {

std::string native(std::wstring const& path) { return VANTIX_2_18::utf::to_utf8(path); }

}  // namespace

bool forEachDirItem(std::wstring const& directory, forEachDirItemCallback& callback) {
    if (directory.size() < 2) return false;
    DIR* listing = ::opendir(native(directory).c_str());
    if (listing == nullptr) return false;
    std::wstring const prefix = addTrailingSeparator(directory);
    errno = 0;
    while (dirent const* entry = ::readdir(listing)) {
        std::string const name = entry->d_name;
        if (!name.empty() && name != "." && name != "..") callback(prefix + VANTIX_2_18::utf::from_utf8(name));
        errno = 0;
    }
    bool const complete = errno == 0;
    ::closedir(listing);
    return complete;
}

std::wstring addTrailingSeparator(std::wstring const& path) {
    return path.empty() || path.back() == L'/' ? path : path + L'/';
}

bool isDirectory(std::wstring const& path) {
    struct stat info;
    return ::stat(native(path).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::int64_t getFileModificationTime(std::wstring const& path) {
    if (path.empty()) return -1;
    std::wstring examined(path);
    if (examined.size() > 1 && examined.back() == L'/') examined.pop_back();
    struct stat info;
    return ::stat(native(examined).c_str(), &info) == 0 ? static_cast<std::int64_t>(info.st_mtime) : -1;
}

bool deleteFile(std::wstring const& path) { return ::unlink(native(path).c_str()) == 0; }

bool removeDirectory(std::wstring const& path) { return ::rmdir(native(path).c_str()) == 0; }

bool createDirectory(wchar_t const* path) {
    if (path == nullptr) return false;
    return ::mkdir(native(path).c_str(), 0777) == 0 || errno == EEXIST;
}

std::wstring getTempFileName(std::wstring const& directory, std::wstring const& prefix) {
    std::string pattern = native(addTrailingSeparator(directory) + prefix) + "XXXXXX";
    if (!ScopedDescriptor(::mkstemp(&pattern[0])).valid()) return std::wstring();
    ::unlink(pattern.c_str());
    return VANTIX_2_18::utf::from_utf8(pattern);
}

}  // namespace os_layer
}  // namespace norvane_1
