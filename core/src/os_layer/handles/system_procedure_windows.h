// A function of a system library, looked up when it is first needed rather
// than imported. Windows code only.
//
// What the library imports is loaded with it, in every process that loads
// it, whether or not the function is ever called. user32 and shell32 are
// the costly ones (under Wine, loading the two takes 12-40 ms and 4-5 MB),
// and the library needs them only for calls that a crash never makes. Such
// calls look their function up here instead. A lookup in a library the
// process has not loaded yet loads it, under the loader lock: not on the
// crash path, unless the library is one every process has (kernel32).
#pragma once

#include <windows.h>

namespace norvane_1 {

// The function `name` of the system library `library` (loaded from the
// system folder if the process has not loaded it yet), or null.
template <typename Function>
Function systemProcedure(wchar_t const* library, char const* name) {
    HMODULE module = ::GetModuleHandleW(library);
    if (module == nullptr) module = ::LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return module == nullptr ? nullptr
                             : reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
}

}  // namespace norvane_1
