// Processes on Windows: is one alive, run one and wait, close one. Windows
// code only.
#include <norvane_1/os_layer.h>

#include "scoped_handle_windows.h"
#include "system_procedure_windows.h"

#include <windows.h>

namespace norvane_1 {
namespace os_layer {
namespace {

constexpr DWORD kCloseGraceMilliseconds = 2000;

ScopedHandle openProcess(DWORD access, unsigned long pid) { return ScopedHandle(::OpenProcess(access, FALSE, pid)); }

// The window functions come from user32, looked up on the first close: see
// system_procedure_windows.h.
using EnumWindowsFunction = BOOL(WINAPI*)(WNDENUMPROC, LPARAM);
using WindowThreadProcessIdFunction = DWORD(WINAPI*)(HWND, LPDWORD);
using PostMessageFunction = BOOL(WINAPI*)(HWND, UINT, WPARAM, LPARAM);

struct WindowSearch {
    DWORD pid;
    WindowThreadProcessIdFunction windowOwner;
    PostMessageFunction postMessage;
};

// Posts WM_CLOSE to the first top-level window of the process and stops.
BOOL CALLBACK closeFirstWindow(HWND window, LPARAM parameter) {
    auto const* search = reinterpret_cast<WindowSearch const*>(parameter);
    DWORD owner = 0;
    search->windowOwner(window, &owner);
    if (owner != search->pid) return TRUE;
    search->postMessage(window, WM_CLOSE, 0, 0);
    return FALSE;
}

// Asks the process to close its first top-level window, if it has one.
void postCloseToFirstWindow(DWORD pid) {
    auto const enumWindows = systemProcedure<EnumWindowsFunction>(L"user32.dll", "EnumWindows");
    WindowSearch search{pid, systemProcedure<WindowThreadProcessIdFunction>(L"user32.dll", "GetWindowThreadProcessId"),
                        systemProcedure<PostMessageFunction>(L"user32.dll", "PostMessageW")};
    if (enumWindows == nullptr || search.windowOwner == nullptr || search.postMessage == nullptr) return;
    enumWindows(closeFirstWindow, reinterpret_cast<LPARAM>(&search));
}

// The program's name: what follows the last backslash.
std::wstring programName(std::wstring const& path) {
    auto const slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

}  // namespace

bool isProcessAlive(unsigned long pid) {
    if (pid == 0) return false;
    ScopedHandle const process = openProcess(SYNCHRONIZE, pid);
    return process.valid() && ::WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT;
}

int runProcess(std::wstring const& path, std::vector<std::wstring> const& arguments) {
    // Every argument quoted, with a blank on either side.
    std::wstring commandLine = programName(path);
    for (auto const& argument : arguments) commandLine += L" \"" + argument + L"\" ";

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(path.c_str(), &commandLine[0], nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                          &startup, &started)) {
        return -1;
    }
    ScopedHandle const thread(started.hThread);
    ScopedHandle const process(started.hProcess);
    ::WaitForSingleObject(process.get(), INFINITE);
    DWORD code = 0;
    return ::GetExitCodeProcess(process.get(), &code) ? static_cast<int>(code) : -1;
}

void closeProcess(unsigned long pid) {
    if (pid == 0 || !isProcessAlive(pid)) return;
    ScopedHandle const process = openProcess(SYNCHRONIZE | PROCESS_TERMINATE, pid);
    if (!process.valid()) return;
    postCloseToFirstWindow(static_cast<DWORD>(pid));
    if (::WaitForSingleObject(process.get(), kCloseGraceMilliseconds) != WAIT_OBJECT_0) {
        ::TerminateProcess(process.get(), 0);
    }
}

}  // namespace os_layer
}  // namespace norvane_1
