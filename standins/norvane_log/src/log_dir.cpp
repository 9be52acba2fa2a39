#include "norvane_log/log_dir.h"

#include <gavrel2/environment.h>
#include <gavrel2/stdpaths.h>

#include <mutex>
#include <set>
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

// Every directory handed out stays valid for the life of the process, so two
// threads asking at once never overwrite each other's text. (Not a
// thread_local: its first use on a thread registers a destructor with the
// dynamic loader, which a thread that crashed inside dlopen still holds.)
wchar_t const* keptText(std::wstring const& text) {
    static std::mutex* const lock = new std::mutex;
    static std::set<std::wstring>* const texts = new std::set<std::wstring>;
    std::lock_guard<std::mutex> guard(*lock);
    return texts->insert(text).first->c_str();
}

}  // namespace

extern "C" void norvane_1_getLogDir(wchar_t const** out) {
    if (out == nullptr) return;
    *out = nullptr;
    gavrel2::path_t const path = chosenDirectory();
    if (!gavrel2::create_directories(path)) return;
    *out = keptText(path.as_string(true));
}
