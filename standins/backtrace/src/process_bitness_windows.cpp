// A process's bitness: a 32-bit process on 64-bit Windows runs under WOW64.
// Windows code only.
#include <backtrace/bt_helper.h>
#include <backtrace/is32_windows.h>

#include <windows.h>

namespace bt {
namespace {

// Looked up at each call: a system without WOW64 lacks the function, and
// every process there is a native one.
bool runsUnderWow64(HANDLE process, bool& wow64) {
    using IsWow64ProcessFunction = BOOL(WINAPI*)(HANDLE, PBOOL);
    HMODULE const kernel = ::GetModuleHandleW(L"kernel32");
    auto const query = kernel ? reinterpret_cast<IsWow64ProcessFunction>(
                                    reinterpret_cast<void*>(::GetProcAddress(kernel, "IsWow64Process")))
                              : nullptr;
    BOOL answer = FALSE;
    if (query != nullptr && !query(process, &answer)) return false;
    wow64 = answer != FALSE;
    return true;
}

}  // namespace

bool is32(void* process) {
    bool wow64 = false;
    return runsUnderWow64(static_cast<HANDLE>(process), wow64) && wow64;
}

int is32pid(unsigned long const& processId) {
    HANDLE const process = processId == 0 ? ::GetCurrentProcess()
                                          : ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
    if (process == nullptr) return -1;
    bool wow64 = false;
    bool const told = runsUnderWow64(process, wow64);
    if (processId != 0) ::CloseHandle(process);
    if (!told) return -1;
    return wow64 ? 1 : 0;
}

}  // namespace bt
