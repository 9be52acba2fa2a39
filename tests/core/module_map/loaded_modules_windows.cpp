#include "loaded_modules.h"

#include <windows.h>
#include <psapi.h>

namespace norvane_test {
namespace {

std::string utf8(wchar_t const* text, int length) {
    int const size = ::WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, length, &out[0], size, nullptr, nullptr);
    return out;
}

// Whether a section of the mapped image may hold code, from its headers.
bool hasCodeSection(HMODULE module) {
    auto const* base = reinterpret_cast<unsigned char const*>(module);
    auto const* dos = reinterpret_cast<IMAGE_DOS_HEADER const*>(base);
    auto const* nt = reinterpret_cast<IMAGE_NT_HEADERS const*>(base + dos->e_lfanew);
    IMAGE_SECTION_HEADER const* section = IMAGE_FIRST_SECTION(nt);
    for (WORD i = 0; i < nt->FileHeader.NumberOfSections; ++i) {
        if (section[i].Characteristics & IMAGE_SCN_MEM_EXECUTE) return true;
    }
    return false;
}

}  // namespace

std::vector<LoadedModule> listLoadedModules() {
    HANDLE const process = ::GetCurrentProcess();
    HMODULE handles[1024];
    DWORD needed = 0;
    std::vector<LoadedModule> modules;
    if (!::EnumProcessModules(process, handles, sizeof handles, &needed)) return modules;
    for (DWORD i = 0; i < needed / sizeof(HMODULE) && i < 1024; ++i) {
        MODULEINFO info{};
        wchar_t name[MAX_PATH];
        DWORD const length = ::GetModuleFileNameW(handles[i], name, MAX_PATH);
        if (!::GetModuleInformation(process, handles[i], &info, sizeof info) || length == 0) continue;
        LoadedModule module;
        module.base = reinterpret_cast<std::uintptr_t>(info.lpBaseOfDll);
        module.size = info.SizeOfImage;
        module.hasCode = hasCodeSection(handles[i]);
        module.path = utf8(name, static_cast<int>(length));
        modules.push_back(module);
    }
    return modules;
}

}  // namespace norvane_test
