// Letting the feedback tool examine this process. POSIX code only.
//
// Where the kernel restricts ptrace to a process's ancestors (Yama's
// ptrace_scope 1), the tool this process starts, being its child, may not
// attach to it. PR_SET_PTRACER with our own id lets our descendants attach
// for as long as a tool runs. Several on-demand reports may run at once:
// the last one to end takes the permission back.
#include "minidump_internal/platform.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <fstream>
#include <mutex>

namespace norvane_1 {
namespace platform {
namespace {

std::mutex g_grantMutex;
int g_grantCount = 0;

bool ptraceRestrictedToAncestors() {
    std::ifstream scope("/proc/sys/kernel/yama/ptrace_scope");
    int value = 0;
    return scope >> value && value == 1;
}

}  // namespace

InspectionGrant::InspectionGrant(std::uint32_t processId) {
    if (processId != currentProcessId() || !ptraceRestrictedToAncestors()) return;
    std::lock_guard<std::mutex> const guard(g_grantMutex);
    if (g_grantCount == 0 && ::prctl(PR_SET_PTRACER, static_cast<unsigned long>(::getpid()), 0, 0, 0) != 0) return;
    ++g_grantCount;
    m_granted = true;
}

InspectionGrant::~InspectionGrant() {
    if (!m_granted) return;
    std::lock_guard<std::mutex> const guard(g_grantMutex);
    if (--g_grantCount == 0) ::prctl(PR_SET_PTRACER, 0, 0, 0, 0);
}

}  // namespace platform
}  // namespace norvane_1
