// Processes on Linux: is one alive, run one and wait, close one. POSIX code
// only.
//
// closeProcess works through a process descriptor (pidfd_open): once open, it
// names that one process for good, so a process id that the system hands
// out again while we wait can never be signalled by mistake.
#include <norvane_1/os_layer.h>

#include "os_layer/process_spawn.h"
#include "scoped_descriptor_posix.h"

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <limits>
#include <string>

namespace norvane_1 {
namespace os_layer {
namespace {

constexpr int kCloseGraceMilliseconds = 2000;

// The state letter of /proc/<pid>/stat; 0 when there is no such process.
char processState(unsigned long pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string const text(std::istreambuf_iterator<char>(stat), {});
    // The name in parentheses may hold blanks and parentheses of its own.
    auto const nameEnd = text.rfind(')');
    return nameEnd == std::string::npos || nameEnd + 2 >= text.size() ? 0 : text[nameEnd + 2];
}

class ProcessDescriptor {
public:
    explicit ProcessDescriptor(unsigned long pid)
        : m_fd(static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0))) {}

    bool isOpen() const { return m_fd.valid(); }
    // The descriptor turns readable when the process ends (reaped or not).
    bool waitForEnd(int milliseconds) const {
        pollfd ready{m_fd.get(), POLLIN, 0};
        int result = 0;
        while ((result = ::poll(&ready, 1, milliseconds)) < 0 && errno == EINTR) {
        }
        return result > 0;
    }
    bool signal(int number) const { return ::syscall(SYS_pidfd_send_signal, m_fd.get(), number, nullptr, 0) == 0; }

private:
    ScopedDescriptor m_fd;
};

}  // namespace

bool isProcessAlive(unsigned long pid) {
    // Beyond pid_t a number would name a process group, or every process.
    if (pid == 0 || pid > static_cast<unsigned long>(std::numeric_limits<pid_t>::max())) return false;
    if (::kill(static_cast<pid_t>(pid), 0) != 0 && errno != EPERM) return false;
    // A zombie has ended; only its exit code is left to collect.
    char const state = processState(pid);
    return state != 0 && state != 'Z' && state != 'X';
}

int runProcess(std::wstring const& path, std::vector<std::wstring> const& arguments) {
    return spawnAndWait(path, arguments);
}

void closeProcess(unsigned long pid) {
    if (!isProcessAlive(pid)) return;
    ProcessDescriptor const process(pid);
    if (!process.isOpen() || process.waitForEnd(0)) return;
    process.signal(SIGTERM);
    if (!process.waitForEnd(kCloseGraceMilliseconds)) process.signal(SIGKILL);
}

}  // namespace os_layer
}  // namespace norvane_1
