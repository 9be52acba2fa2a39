// Windows: the regions come from VirtualQuery of this process, or
// VirtualQueryEx of a foreign one.
#include "region_source.h"

#include "process_bitness.h"
#include "scoped_handle_windows.h"

#include <backtrace/is32_windows.h>

#include <windows.h>
#include <psapi.h>

namespace norvane_1 {
namespace {

constexpr DWORD kQueryAndRead = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;  // 0x410
constexpr DWORD kNameCapacity = 260;
constexpr DWORD kExecutePages = 0xF0;  // every PAGE_EXECUTE* protection

// A protection of 0 (reserved memory) or with the no-access bit can't be
// read; nor can a guard page, whose first touch raises an exception.
bool readableProtection(DWORD protection) {
    return protection != 0 && (protection & (PAGE_NOACCESS | PAGE_GUARD)) == 0;
}

class WindowsRegionSource : public RegionSource {
public:
    // A null handle means this process.
    explicit WindowsRegionSource(HANDLE process) : m_process(process) {}

    bool query(std::uint64_t address, MemoryRegion& region) override {
        MEMORY_BASIC_INFORMATION info{};
        auto const where = reinterpret_cast<LPCVOID>(static_cast<std::uintptr_t>(address));
        SIZE_T const got = m_process ? ::VirtualQueryEx(m_process.get(), where, &info, sizeof info)
                                     : ::VirtualQuery(where, &info, sizeof info);
        if (got != sizeof info) return false;
        region.base = reinterpret_cast<std::uintptr_t>(info.BaseAddress);
        region.allocationBase = reinterpret_cast<std::uintptr_t>(info.AllocationBase);
        region.size = info.RegionSize;
        region.free = info.State == MEM_FREE;
        region.executable = (info.Protect & kExecutePages) != 0;
        region.readable = info.State == MEM_COMMIT && readableProtection(info.Protect);
        return true;
    }

    bool moduleName(std::uint64_t base, std::wstring& name) override {
        wchar_t buffer[kNameCapacity];
        auto const module = reinterpret_cast<HMODULE>(static_cast<std::uintptr_t>(base));
        DWORD const length = m_process ? ::K32GetModuleFileNameExW(m_process.get(), module, buffer, kNameCapacity)
                                       : ::GetModuleFileNameW(module, buffer, kNameCapacity);
        if (length == 0) return false;
        name.assign(buffer, length);
        if (m_process && isWow64Process(m_process.get()) && bt::is32(m_process.get())) correctWow64ModulePath(name);
        return true;
    }

private:
    ScopedHandle m_process;
};

}  // namespace

std::unique_ptr<RegionSource> openRegionSource(unsigned long processId) {
    if (processId == 0) return std::make_unique<WindowsRegionSource>(nullptr);
    HANDLE process = ::OpenProcess(kQueryAndRead, FALSE, processId);
    if (process == nullptr) return nullptr;
    return std::make_unique<WindowsRegionSource>(process);
}

}  // namespace norvane_1
