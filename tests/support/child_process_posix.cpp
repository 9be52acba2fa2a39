// POSIX code only.
#include "child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

extern char** environ;

namespace norvane_test {
namespace {

std::vector<std::string> changedEnvironment(std::map<std::string, std::optional<std::string>> const& changes) {
    std::vector<std::string> entries;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        std::string const text(*entry);
        if (changes.count(text.substr(0, text.find('='))) == 0) entries.push_back(text);
    }
    for (auto const& change : changes) {
        if (change.second) entries.push_back(change.first + "=" + *change.second);
    }
    return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) pointers.push_back(&text[0]);
    pointers.push_back(nullptr);
    return pointers;
}

ChildOutcome outcomeOf(int status) {
    ChildOutcome outcome;
    outcome.finished = true;
    outcome.exited = WIFEXITED(status);
    if (outcome.exited) outcome.exitCode = static_cast<std::uint32_t>(WEXITSTATUS(status));
    if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
    return outcome;
}

}  // namespace

struct ChildProcess::Platform {
    pid_t pid = 0;
    bool reaped = false;
};

ChildProcess::ChildProcess(ChildOptions const& options) : m_platform(new Platform) {
    std::vector<std::string> arguments{options.program.string()};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    std::vector<std::string> environment = changedEnvironment(options.environment);
    std::vector<char*> argv = pointersTo(arguments);
    std::vector<char*> envp = pointersTo(environment);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (!options.standardOutput.empty()) {
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, options.standardOutput.c_str(),
                                           O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    }
    int const error = ::posix_spawn(&m_platform->pid, argv[0], &actions, nullptr, argv.data(), envp.data());
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error("can't start " + arguments[0] + ": " + std::strerror(error));
    }
}

ChildProcess::~ChildProcess() {
    if (m_platform->reaped) return;
    ::kill(m_platform->pid, SIGKILL);
    int status = 0;
    ::waitpid(m_platform->pid, &status, 0);
}

std::uint32_t ChildProcess::pid() const { return static_cast<std::uint32_t>(m_platform->pid); }

ChildOutcome ChildProcess::wait(std::chrono::milliseconds timeout) {
    // A descriptor of the process wakes poll the moment the child ends:
    // the bench takes that moment for the end of the process.
    int const process = static_cast<int>(::syscall(SYS_pidfd_open, m_platform->pid, 0));
    if (process < 0) throw std::runtime_error(std::string("pidfd_open failed: ") + std::strerror(errno));
    pollfd entry{process, POLLIN, 0};
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    int ready = 0;
    do {
        auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline -
                                                                                std::chrono::steady_clock::now());
        ready = ::poll(&entry, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    } while (ready < 0 && errno == EINTR);
    ::close(process);
    if (ready <= 0) ::kill(m_platform->pid, SIGKILL);
    int status = 0;
    while (::waitpid(m_platform->pid, &status, 0) < 0 && errno == EINTR) {
    }
    m_platform->reaped = true;
    return ready > 0 ? outcomeOf(status) : ChildOutcome{};
}

std::string describe(ChildOutcome const& outcome) {
    if (!outcome.finished) return "did not finish in time and was killed";
    if (outcome.exited) return "exited with " + std::to_string(outcome.exitCode);
    return "was ended by signal " + std::to_string(outcome.signal) + " (" + ::strsignal(outcome.signal) + ")";
}

std::filesystem::path programBesideThisOne(std::string const& stem) {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / stem;
}

}  // namespace norvane_test
