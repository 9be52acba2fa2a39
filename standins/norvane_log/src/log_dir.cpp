#include "norvane_log/log_dir.h"

#include <gavrel2/environment.h>
#include <gavrel2/stdpaths.h>

#include <string>

namespace {

std::wstring programStem() {
    std::wstring leaf = gavrel2::stdpaths::get_program_path().get_leaf();
    auto const dot = leaf.rfind(L'.');
    leaf = dot == std::wstring::npos ? leaf : leaf.substr(0, dot);
    return leaf.empty() ? std::wstring(L"program") : leaf;
}

gavrel2::path_t chosenDirectory() {
    std::wstring const chosen = gavrel2::get_environ_value(L"NORVANE_LOG_DIR");
    if (!chosen.empty()) return gavrel2::path_t(chosen);
    gavrel2::path_t directory = gavrel2::stdpaths::get_temp_dir();
    directory.append(L"norvane").append(programStem());
    return directory;
}

}  // namespace

extern "C" void norvane_1_getLogDir(wchar_t const** out) {
    if (out == nullptr) return;
    *out = nullptr;
    // One text per thread: two threads asking at once don't overwrite each other.
    static thread_local std::wstring directory;
    gavrel2::path_t const path = chosenDirectory();
    if (!gavrel2::create_directories(path)) return;
    directory = path.as_string(true);
    *out = directory.c_str();
}
