// System facts on Windows. Windows code only.
#include <norvane_1/os_layer.h>

#include "os_layer/system_facts.h"
#include "os_layer/windows_version_names.h"
#include "scoped_handle_windows.h"
#include "system_procedure_windows.h"

#include <windows.h>
#include <shlobj.h>

#include <cstdlib>

namespace norvane_1 {
namespace os_layer {
namespace {

constexpr DWORD kTempPathLength = 260;
constexpr DWORD kUserNameLength = 32767;
constexpr int kPersonalFolderCreated = 0x8005;  // CSIDL_PERSONAL | CSIDL_FLAG_CREATE
constexpr DWORD kUseStandardHandles = 0x100;
constexpr DWORD kNewProcessGroup = 0x200;

// The program's name: what follows the last backslash.
std::wstring programName(std::wstring const& path) {
    auto const slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

}  // namespace

namespace platform_facts {

std::wstring systemTempDirectory() {
    std::wstring buffer(kTempPathLength, L'\0');
    DWORD length = ::GetTempPathW(kTempPathLength, &buffer[0]);
    if (length > kTempPathLength) {
        buffer.assign(length + 1, L'\0');
        length = ::GetTempPathW(length + 1, &buffer[0]);
    }
    return length > 0 && length < buffer.size() ? buffer.substr(0, length) : std::wstring();
}

std::vector<wchar_t const*> tempDirectoryVariables() { return {L"TEMP", L"TMP", L"TMPDIR"}; }
wchar_t pathSeparator() { return L'\\'; }

std::wstring executablePath() {
    wchar_t path[MAX_PATH];
    DWORD const length = ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    return length == 0 ? std::wstring() : std::wstring(path, length);
}

}  // namespace platform_facts

std::wstring getEnvironmentValue(wchar_t const* name) {
    std::size_t length = 0;
    if (name == nullptr || ::_wgetenv_s(&length, nullptr, 0, name) != 0 || length == 0) return {};
    std::wstring value(length + 1, L'\0');
    if (::_wgetenv_s(&length, &value[0], value.size(), name) != 0) return {};
    value.resize(length > 0 ? length - 1 : 0);  // the length counts the terminating zero
    return value;
}

std::wstring getOsName() {
    OSVERSIONINFOEXW record{};
    record.dwOSVersionInfoSize = sizeof record;
    if (!::GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&record))) return {};
    WindowsVersion version;
    version.major = record.dwMajorVersion;
    version.minor = record.dwMinorVersion;
    version.build = record.dwBuildNumber;
    version.productType = record.wProductType;
    version.servicePack = record.szCSDVersion;
    return windowsVersionText(version);
}

std::wstring getUserName() {
    std::wstring buffer(kUserNameLength, L'\0');
    DWORD length = kUserNameLength;
    if (!::GetUserNameW(&buffer[0], &length) || length == 0) return L"unknown_user";
    buffer.resize(length - 1);  // the count includes the terminating zero
    return buffer;
}

std::wstring getDocumentsDirectory() {
    // From shell32, looked up on use: see system_procedure_windows.h.
    using FolderPathFunction = HRESULT(WINAPI*)(HWND, int, HANDLE, DWORD, LPWSTR);
    auto const folderPath = systemProcedure<FolderPathFunction>(L"shell32.dll", "SHGetFolderPathW");
    wchar_t path[MAX_PATH] = {};
    if (folderPath == nullptr || folderPath(nullptr, kPersonalFolderCreated, nullptr, 0, path) < 0) return {};
    return path;
}

std::uint32_t startProcess(std::wstring const& path, std::vector<std::wstring> const& arguments, bool discardOutput) {
    // An argument is quoted only when it holds a blank.
    std::wstring commandLine = programName(path);
    for (auto const& argument : arguments) {
        commandLine += argument.find(L' ') == std::wstring::npos ? L" " + argument : L" \"" + argument + L"\"";
    }
    STARTUPINFOW startup{};
    ScopedFileHandle nul;
    if (discardOutput) {
        startup.cb = sizeof startup;
        startup.dwFlags = kUseStandardHandles;
        nul.reset(::CreateFileW(L"nul:", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, 0, nullptr));
        startup.hStdOutput = nul.get();
    }
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(path.c_str(), &commandLine[0], nullptr, nullptr, FALSE, kNewProcessGroup, nullptr, nullptr,
                          &startup, &started)) {
        return 0;
    }
    ScopedHandle const thread(started.hThread);
    ScopedHandle const process(started.hProcess);
    return started.dwProcessId;
}

void sleepMilliseconds(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

}  // namespace os_layer
}  // namespace norvane_1
