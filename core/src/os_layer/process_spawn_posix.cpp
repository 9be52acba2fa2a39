// Starting the handler process on Linux and waiting for it. POSIX code only.
#include "os_layer/process_spawn.h"

#include <vantix_2_18/utf.h>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>

extern char** environ;

namespace norvane_1 {
namespace os_layer {
namespace {

// A host that ignores SIGCHLD (or sets SA_NOCLDWAIT) has its children reaped
// by the system, and waitpid would never see the handler's exit code. While
// the handler runs, the default disposition stands in for the host's.
class DefaultChildSignal {
public:
    DefaultChildSignal() {
        struct sigaction defaults {};
        defaults.sa_handler = SIG_DFL;
        sigemptyset(&defaults.sa_mask);
        m_saved = ::sigaction(SIGCHLD, &defaults, &m_host) == 0;
    }
    ~DefaultChildSignal() {
        if (m_saved) ::sigaction(SIGCHLD, &m_host, nullptr);
    }
    DefaultChildSignal(DefaultChildSignal const&) = delete;
    DefaultChildSignal& operator=(DefaultChildSignal const&) = delete;

private:
    struct sigaction m_host {};
    bool m_saved = false;
};

int waitForExitCode(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    // A handler killed by a signal reports it the way a shell would.
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
}

}  // namespace

int spawnAndWait(std::wstring const& program, std::vector<std::wstring> const& arguments, void (*started)()) {
    std::vector<std::string> texts{VANTIX_2_18::utf::to_utf8(program)};
    for (auto const& argument : arguments) texts.push_back(VANTIX_2_18::utf::to_utf8(argument));
    std::vector<char*> argv;
    for (auto& text : texts) argv.push_back(&text[0]);
    argv.push_back(nullptr);

    DefaultChildSignal const reapedByUs;
    pid_t child = 0;
    if (::posix_spawn(&child, texts[0].c_str(), nullptr, nullptr, argv.data(), environ) != 0) return -1;
    if (started != nullptr) started();
    return waitForExitCode(child);
}

}  // namespace os_layer
}  // namespace norvane_1
