// The crashed thread's platform steps on Windows. Windows code only.
#include "minidump_internal/platform.h"
#include "windows_handler_state.h"

#include <windows.h>

#include <atomic>

namespace norvane_1 {
namespace platform {

void saveExceptionData(HandlerState& state, ExceptionData const* data, std::uint32_t processId,
                       std::uint32_t threadId) {
    auto& windowsState = static_cast<WindowsHandlerState&>(state);
    windowsState.setExceptionData(data);
    windowsState.setCrashedProcessId(processId);
    windowsState.setCrashedThreadId(threadId);
}

// The host's own error mode is kept, with the fault dialog off on top, and
// is what comes back: a host that set SEM_FAILCRITICALERRORS keeps it.
namespace {
std::atomic<UINT> g_hostErrorMode{0};
std::atomic<bool> g_errorModeChanged{false};
}  // namespace

void suppressFaultDialogs() {
    UINT const hostMode = ::GetErrorMode();
    g_hostErrorMode = hostMode;
    g_errorModeChanged = true;
    ::SetErrorMode(hostMode | SEM_NOGPFAULTERRORBOX);
}

void restoreFaultDialogs() {
    if (g_errorModeChanged.exchange(false)) ::SetErrorMode(g_hostErrorMode);
}

void endCrashedProcess() { ::TerminateProcess(::GetCurrentProcess(), 3); }

wchar_t pathSeparator() { return L'\\'; }
wchar_t const* programExtension() { return L".exe"; }

// Windows lets a program with the rights to open this process examine it.
InspectionGrant::InspectionGrant(std::uint32_t) {}
InspectionGrant::~InspectionGrant() = default;

std::uint32_t currentProcessId() { return ::GetCurrentProcessId(); }
std::uint32_t currentThreadId() { return ::GetCurrentThreadId(); }

}  // namespace platform
}  // namespace norvane_1
