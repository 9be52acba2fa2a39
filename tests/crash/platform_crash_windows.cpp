// Windows code only.
#include "platform_crash.h"

#include <windows.h>
#include <tlhelp32.h>

namespace crash_test {

char const kHostProcessName[] = "crash_host.exe";
char const kLibraryFileName[] = "norvane.dll";

// Without a filter the system ends the process with the exception code.
bool endedByPlatformAccessViolation(norvane_test::ChildOutcome const& outcome) {
    return outcome.finished && outcome.exitCode == 0xC0000005;
}

bool endedByMercyKill(norvane_test::ChildOutcome const& outcome) { return outcome.finished && outcome.exitCode == 0; }

std::size_t threadCountOf(std::uint32_t processId) {
    HANDLE const snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return 0;
    std::size_t count = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Thread32First(snapshot, &entry); more; more = ::Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == processId) ++count;
    }
    ::CloseHandle(snapshot);
    return count;
}

}  // namespace crash_test
