// load_bench's view of its process on Windows.
#include "load_probe.h"

#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

namespace load_bench {
namespace {

int threadsOfThisProcess() {
    HANDLE const snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return 0;
    int threads = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Thread32First(snapshot, &entry); more; more = ::Thread32Next(snapshot, &entry))
        threads += entry.th32OwnerProcessID == ::GetCurrentProcessId();
    ::CloseHandle(snapshot);
    return threads;
}

double milliseconds(FILETIME const& time) {
    return static_cast<double>((static_cast<ULONGLONG>(time.dwHighDateTime) << 32) | time.dwLowDateTime) / 1e4;
}

}  // namespace

ProcessFigures processFigures() {
    ProcessFigures figures{};
    figures.threads = threadsOfThisProcess();
    PROCESS_MEMORY_COUNTERS memory{};
    if (::K32GetProcessMemoryInfo(::GetCurrentProcess(), &memory, sizeof memory))
        figures.residentKiB = static_cast<double>(memory.WorkingSetSize) / 1024;
    FILETIME created{}, exited{}, kernel{}, user{};
    if (::GetProcessTimes(::GetCurrentProcess(), &created, &exited, &kernel, &user))
        figures.cpuMs = milliseconds(kernel) + milliseconds(user);
    return figures;
}

void* loadLibrary() { return ::LoadLibraryW(NORVANE_LIBRARY_FILE); }

void* librarySymbol(void* library, char const* name) {
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace load_bench
