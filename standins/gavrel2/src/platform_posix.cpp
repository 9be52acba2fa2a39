// POSIX side of the stand-in: paths, files, environment, shared libraries.
#include "gavrel2/environment.h"
#include "gavrel2/path.h"
#include "gavrel2/shared_lib.h"
#include "gavrel2/stdpaths.h"

#include "platform.h"

#include <vantix_2_18/utf.h>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace gavrel2 {
namespace detail {

wchar_t preferredSeparator() { return L'/'; }
bool isSeparator(wchar_t c) { return c == L'/'; }
bool isAbsolute(std::wstring const& path) { return !path.empty() && path[0] == L'/'; }

std::FILE* openFile(std::wstring const& path, char const* mode) {
    return std::fopen(VANTIX_2_18::utf::to_utf8(path).c_str(), mode);
}

bool makeDirectory(std::wstring const& path) { return ::mkdir(VANTIX_2_18::utf::to_utf8(path).c_str(), 0777) == 0; }

}  // namespace detail

namespace {

bool statPath(std::wstring const& path, struct stat& info) {
    return !path.empty() && ::stat(VANTIX_2_18::utf::to_utf8(path).c_str(), &info) == 0;
}

}  // namespace

bool path_t::exists(std::wstring const& path) {
    struct stat info;
    return statPath(path, info);
}

bool path_t::is_directory(std::wstring const& path) {
    struct stat info;
    return statPath(path, info) && S_ISDIR(info.st_mode);
}

std::wstring get_environ_value(std::wstring const& name) {
    char const* value = std::getenv(VANTIX_2_18::utf::to_utf8(name).c_str());
    return value ? VANTIX_2_18::utf::from_utf8(value) : std::wstring();
}

bool shared_lib_t::initialize(std::wstring const& name, path_t const& directory) {
    uninitialize();
    path_t file(directory);
    file.append(name + L".so");
    m_handle = ::dlopen(VANTIX_2_18::utf::to_utf8(file.as_string()).c_str(), RTLD_NOW | RTLD_LOCAL);
    return m_handle != nullptr;
}

void shared_lib_t::uninitialize() {
    if (m_handle != nullptr) ::dlclose(m_handle);
    m_handle = nullptr;
}

void* shared_lib_t::get_symbol(std::wstring const& name) const {
    return m_handle ? ::dlsym(m_handle, VANTIX_2_18::utf::to_utf8(name).c_str()) : nullptr;
}

namespace stdpaths {

path_t get_module_dir(void const* address) {
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr) return path_t();
    return path_t(VANTIX_2_18::utf::from_utf8(info.dli_fname)).get_branch();
}

path_t get_program_path() {
    char buffer[4096];
    ssize_t const length = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (length <= 0) return path_t();
    return path_t(VANTIX_2_18::utf::from_utf8(std::string(buffer, static_cast<std::size_t>(length))));
}

path_t get_temp_dir() {
    char const* value = std::getenv("TMPDIR");
    return path_t(value && *value ? VANTIX_2_18::utf::from_utf8(value) : std::wstring(L"/tmp"));
}

}  // namespace stdpaths

}  // namespace gavrel2
