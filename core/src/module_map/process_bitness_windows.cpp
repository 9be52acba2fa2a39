// Whether a process is a 32-bit one on 64-bit Windows. Windows code only.
#include "process_bitness.h"
#include "system_procedure_windows.h"

#include <windows.h>

namespace norvane_1 {

bool isWow64Process(void* process) {
    using IsWow64ProcessFunction = BOOL(WINAPI*)(HANDLE, PBOOL);
    auto const query = systemProcedure<IsWow64ProcessFunction>(L"kernel32.dll", "IsWow64Process");
    BOOL wow64 = FALSE;
    return query != nullptr && query(static_cast<HANDLE>(process), &wow64) && wow64;
}

}  // namespace norvane_1
