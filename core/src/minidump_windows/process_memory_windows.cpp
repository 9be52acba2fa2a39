// The "Process" section on Windows. Windows code only.
#include <norvane_1/crash_handling.h>

#include "scoped_handle_windows.h"

#include <windows.h>
#include <psapi.h>

namespace norvane_1 {
namespace {

constexpr DWORD kQueryAndRead = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;

// A handle of the process, closed with it; pid 0 is this process, whose
// pseudo handle is never closed.
class ProcessHandle {
public:
    explicit ProcessHandle(std::uint32_t pid)
        : m_opened(pid == 0 ? nullptr : ::OpenProcess(kQueryAndRead, FALSE, pid)) {
        m_handle = pid == 0 ? ::GetCurrentProcess() : m_opened.get();
    }
    HANDLE get() const { return m_handle; }

private:
    ScopedHandle m_opened;
    HANDLE m_handle;
};

std::wstring baseName(HANDLE process) {
    wchar_t buffer[MAX_PATH];
    DWORD const length = process ? ::K32GetModuleBaseNameW(process, nullptr, buffer, MAX_PATH) : 0;
    return std::wstring(buffer, length);
}

// Committed and reserved address space, region by region. A region that
// can't be queried is stepped over by one page.
std::uint64_t virtualMemorySize(HANDLE process) {
    SYSTEM_INFO system{};
    ::GetSystemInfo(&system);
    auto address = static_cast<char const*>(system.lpMinimumApplicationAddress);
    auto const end = static_cast<char const*>(system.lpMaximumApplicationAddress);
    std::uint64_t committed = 0;
    std::uint64_t reserved = 0;
    while (address < end) {
        MEMORY_BASIC_INFORMATION region{};
        if (::VirtualQueryEx(process, address, &region, sizeof region) == 0) {
            address += system.dwPageSize;
            continue;
        }
        address = static_cast<char const*>(region.BaseAddress) + region.RegionSize;
        if (region.State == MEM_COMMIT) committed += region.RegionSize;
        if (region.State == MEM_RESERVE) reserved += region.RegionSize;
    }
    return committed + reserved;
}

}  // namespace

std::wstring getProcessName(unsigned long pid) {
    ProcessHandle const process(static_cast<std::uint32_t>(pid));
    return baseName(process.get());
}

std::wstring getProcessMemInfo(std::uint32_t pid) {
    ProcessHandle const process(pid);
    std::wstring text = L"Process Name: " + baseName(process.get()) + L"\n";
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    if (process.get() == nullptr ||
        !::K32GetProcessMemoryInfo(process.get(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                                   sizeof counters)) {
        return text;
    }
    text += L"Virtual Memory Size: " + std::to_wstring(virtualMemorySize(process.get()) / 1024) + L"K\n";
    text += L"Working Set Size: " + std::to_wstring(counters.WorkingSetSize / 1024) + L"K\n";
    return text;
}

}  // namespace norvane_1
