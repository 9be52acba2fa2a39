// Whether a process is a 32-bit one on 64-bit Windows. Windows code only.
#include "process_bitness.h"

#include <windows.h>

namespace norvane_1 {

bool isWow64Process(void* process) {
    using IsWow64ProcessFunction = BOOL(WINAPI*)(HANDLE, PBOOL);
    HMODULE kernel = ::GetModuleHandleW(L"kernel32");
    auto query = kernel ? reinterpret_cast<IsWow64ProcessFunction>(
                              reinterpret_cast<void*>(::GetProcAddress(kernel, "IsWow64Process")))
                        : nullptr;
    BOOL wow64 = FALSE;
    return query != nullptr && query(static_cast<HANDLE>(process), &wow64) && wow64;
}

}  // namespace norvane_1
