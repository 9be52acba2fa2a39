// Windows code only.
#include "child_process.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <cwctype>
#include <iterator>
#include <stdexcept>

namespace norvane_test {
namespace {

// The code a killed child is left with; not one a crash or the library uses.
constexpr UINT kKilledExitCode = 0xDEAD;

std::wstring toWide(std::string const& text) {
    if (text.empty()) return std::wstring();
    int const size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), &wide[0], size);
    return wide;
}

std::wstring upper(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), [](wchar_t c) { return std::towupper(c); });
    return text;
}

// The rules of CommandLineToArgvW and the C run-time: quotes around an
// argument with a blank, quotes inside escaped, and backslashes doubled
// where they come before a quote.
std::wstring quoted(std::wstring const& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos) return argument;
    std::wstring out = L"\"";
    std::size_t backslashes = 0;
    for (wchar_t c : argument) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        out.append(c == L'"' ? backslashes * 2 + 1 : backslashes, L'\\');
        backslashes = 0;
        out += c;
    }
    out.append(backslashes * 2, L'\\');
    return out + L"\"";
}

// Names of variables are compared without regard to case, as Windows does.
std::map<std::wstring, std::wstring> changedEnvironment(
    std::map<std::string, std::optional<std::string>> const& changes) {
    std::map<std::wstring, std::wstring> entries;  // upper-case name -> "Name=value"
    wchar_t* block = ::GetEnvironmentStringsW();
    for (wchar_t const* entry = block; *entry != L'\0'; entry += std::wcslen(entry) + 1) {
        std::wstring const text(entry);
        std::size_t const equals = text.find(L'=', 1);  // "=C:=C:\..." entries start with '='
        entries[upper(text.substr(0, equals))] = text;
    }
    ::FreeEnvironmentStringsW(block);
    for (auto const& change : changes) {
        std::wstring const name = toWide(change.first);
        if (change.second) {
            entries[upper(name)] = name + L"=" + toWide(*change.second);
        } else {
            entries.erase(upper(name));
        }
    }
    return entries;
}

HANDLE inheritableOutputFile(std::filesystem::path const& path) {
    SECURITY_ATTRIBUTES security{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &security, CREATE_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

struct ChildProcess::Platform {
    PROCESS_INFORMATION process{};
    bool finished = false;
};

ChildProcess::ChildProcess(ChildOptions const& options) : m_platform(new Platform) {
    std::wstring line = quoted(options.program.wstring());
    for (auto const& argument : options.arguments) line += L" " + quoted(toWide(argument));
    std::wstring block;
    for (auto const& entry : changedEnvironment(options.environment)) block += entry.second + L'\0';
    block += L'\0';
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    HANDLE output = INVALID_HANDLE_VALUE;
    if (!options.standardOutput.empty()) {
        output = inheritableOutputFile(options.standardOutput);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
        startup.hStdOutput = output;
        startup.hStdError = output;
    }
    // Wine, under a load of hundreds of starts, now and then refuses one
    // with ERROR_INTERNAL_ERROR; a moment later it starts.
    BOOL started = FALSE;
    for (int attempt = 0; attempt < 3 && !started; ++attempt) {
        if (attempt > 0) ::Sleep(100);
        started = ::CreateProcessW(options.program.c_str(), &line[0], nullptr, nullptr, TRUE,
                                   CREATE_UNICODE_ENVIRONMENT, &block[0], nullptr, &startup, &m_platform->process);
    }
    if (output != INVALID_HANDLE_VALUE) ::CloseHandle(output);
    if (!started) {
        throw std::runtime_error("can't start " + options.program.string() + ": error " +
                                 std::to_string(::GetLastError()));
    }
    ::CloseHandle(m_platform->process.hThread);
}

ChildProcess::~ChildProcess() {
    if (!m_platform->finished) {
        ::TerminateProcess(m_platform->process.hProcess, kKilledExitCode);
        ::WaitForSingleObject(m_platform->process.hProcess, INFINITE);
    }
    ::CloseHandle(m_platform->process.hProcess);
}

std::uint32_t ChildProcess::pid() const { return m_platform->process.dwProcessId; }

ChildOutcome ChildProcess::wait(std::chrono::milliseconds timeout) {
    HANDLE const process = m_platform->process.hProcess;
    if (::WaitForSingleObject(process, static_cast<DWORD>(timeout.count())) != WAIT_OBJECT_0) {
        ::TerminateProcess(process, kKilledExitCode);
        ::WaitForSingleObject(process, INFINITE);
        m_platform->finished = true;
        return ChildOutcome{};
    }
    m_platform->finished = true;
    ChildOutcome outcome;
    DWORD code = 0;
    ::GetExitCodeProcess(process, &code);
    outcome.finished = true;
    outcome.exited = true;
    outcome.exitCode = code;
    return outcome;
}

std::string describe(ChildOutcome const& outcome) {
    if (!outcome.finished) return "did not finish in time and was killed";
    char text[64];
    std::snprintf(text, sizeof text, "exited with %lu (0x%08lX)", static_cast<unsigned long>(outcome.exitCode),
                  static_cast<unsigned long>(outcome.exitCode));
    return text;
}

std::filesystem::path programBesideThisOne(std::string const& stem) {
    wchar_t path[MAX_PATH * 2];
    DWORD const length = ::GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
    return std::filesystem::path(std::wstring(path, length)).parent_path() / (stem + ".exe");
}

}  // namespace norvane_test
