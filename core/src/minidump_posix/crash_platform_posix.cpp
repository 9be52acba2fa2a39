// The crashed thread's platform steps on Linux. POSIX code only.
#include "minidump_internal/platform.h"
#include "posix_handler_state.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace norvane_1 {
namespace platform {

void saveExceptionData(HandlerState& state, ExceptionData const* data, std::uint32_t processId,
                       std::uint32_t threadId) {
    auto& posixState = static_cast<PosixHandlerState&>(state);
    posixState.setExceptionData(data);
    posixState.setCrashedProcessId(processId);
    posixState.setCrashedThreadId(threadId);
}

// Linux shows no fault dialogs.
void suppressFaultDialogs() {}
void restoreFaultDialogs() {}

void endCrashedProcess() { ::_exit(3); }

wchar_t pathSeparator() { return L'/'; }
wchar_t const* programExtension() { return L""; }

std::uint32_t currentProcessId() { return static_cast<std::uint32_t>(::getpid()); }

std::uint32_t currentThreadId() { return static_cast<std::uint32_t>(::syscall(SYS_gettid)); }

}  // namespace platform
}  // namespace norvane_1
