// POSIX code only.
#include "child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <thread>

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
    auto const deadline = std::chrono::steady_clock::now() + timeout;
    int status = 0;
    for (;;) {
        pid_t const done = ::waitpid(m_platform->pid, &status, WNOHANG);
        if (done == m_platform->pid) break;
        if (done < 0 && errno != EINTR) throw std::runtime_error("waitpid failed");
        if (std::chrono::steady_clock::now() >= deadline) {
            ::kill(m_platform->pid, SIGKILL);
            ::waitpid(m_platform->pid, &status, 0);
            m_platform->reaped = true;
            return ChildOutcome{};
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    m_platform->reaped = true;
    return outcomeOf(status);
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
