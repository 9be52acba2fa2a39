// The crashed thread's platform steps on Windows. Windows code only.
#include "minidump_internal/platform.h"
#include "windows_handler_state.h"

#include <windows.h>

namespace norvane_1 {
namespace platform {

void saveExceptionData(HandlerState& state, ExceptionData const* data, std::uint32_t processId,
                       std::uint32_t threadId) {
    auto& windowsState = static_cast<WindowsHandlerState&>(state);
    windowsState.setExceptionData(data);
    windowsState.setCrashedProcessId(processId);
    windowsState.setCrashedThreadId(threadId);
}

void suppressFaultDialogs() { ::SetErrorMode(SEM_NOGPFAULTERRORBOX); }
void restoreFaultDialogs() { ::SetErrorMode(0); }

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
