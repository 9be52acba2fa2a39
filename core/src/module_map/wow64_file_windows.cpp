// The file part of the path correction for 32-bit processes.
#include "process_bitness.h"

#include "mapped_file_windows.h"
#include "pe_image.h"
#include "system_procedure_windows.h"
#include "wow64_path.h"

#include <gavrel2/path.h>

#include <windows.h>

namespace norvane_1 {
namespace {

constexpr WORD kMachineIa64 = 0x200;
constexpr WORD kMachineAmd64 = 0x8664;

template <typename Function>
Function kernelFunction(char const* name) {
    return systemProcedure<Function>(L"kernel32.dll", name);
}

// Turns file system redirection off for this thread while it lives. A
// 64-bit process has none to turn off, so a refusal is no obstacle; only a
// system without the functions is.
class RedirectionOff {
public:
    RedirectionOff() : m_revert(kernelFunction<RevertFunction>("Wow64RevertWow64FsRedirection")) {
        auto disable = kernelFunction<DisableFunction>("Wow64DisableWow64FsRedirection");
        m_available = disable != nullptr && m_revert != nullptr;
        m_disabled = m_available && disable(&m_state);
    }
    ~RedirectionOff() {
        if (m_disabled) m_revert(m_state);
    }
    RedirectionOff(RedirectionOff const&) = delete;
    RedirectionOff& operator=(RedirectionOff const&) = delete;

    bool available() const { return m_available; }

private:
    using DisableFunction = BOOL(WINAPI*)(PVOID*);
    using RevertFunction = BOOL(WINAPI*)(PVOID);

    RevertFunction m_revert;
    PVOID m_state = nullptr;
    bool m_available = false;
    bool m_disabled = false;
};

bool is64BitImage(std::wstring const& path) {
    MappedFile const file(path.c_str());
    pe_image::Identity identity;
    if (file.bytes() == nullptr || !pe_image::read(file.bytes(), file.size(), identity)) return false;
    return identity.machine == kMachineIa64 || identity.machine == kMachineAmd64;
}

}  // namespace

bool correctWow64ModulePath(std::wstring& path) {
    RedirectionOff const redirection;
    if (!redirection.available() || !is64BitImage(path)) return false;
    std::wstring corrected = path;
    if (!replaceSystem32Component(corrected) || !gavrel2::path_t::exists(corrected)) return false;
    path = corrected;
    return true;
}

}  // namespace norvane_1
