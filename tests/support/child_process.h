// Starting a program as a child process and watching it end, for tests and
// benchmarks that check a crash from outside. child_process_posix.cpp and
// child_process_windows.cpp implement it.
//
//   norvane_test::ChildOptions options;
//   options.program = norvane_test::programBesideThisOne("crash_host");
//   options.arguments = {"abort"};
//   options.environment = {{"NORVANE_LOG_DIR", dir}, {"NORVANE_CRASH_HANDLER", std::nullopt}};
//   norvane_test::ChildProcess child(options);
//   norvane_test::ChildOutcome outcome = child.wait(std::chrono::seconds(60));
//
// All texts are UTF-8.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace norvane_test {

struct ChildOptions {
    std::filesystem::path program;
    std::vector<std::string> arguments;  // each reaches the child as one argument
    // Changes to this process's environment; no value removes the variable.
    std::map<std::string, std::optional<std::string>> environment;
    // A file for the child's standard output and error; empty: ours.
    std::filesystem::path standardOutput;
};

struct ChildOutcome {
    bool finished = false;       // false: the time ran out and the child was killed
    bool exited = false;         // ended by exit rather than by a signal
    std::uint32_t exitCode = 0;  // the full code on Windows; 0 to 255 on POSIX
    int signal = 0;              // POSIX: the signal that ended the child
};

class ChildProcess {
public:
    // Throws std::runtime_error if the program can't be started.
    explicit ChildProcess(ChildOptions const& options);
    // A child still running is killed.
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    std::uint32_t pid() const;
    // Waits for the end at most `timeout`; when the time is up the child is
    // killed and the outcome says it did not finish.
    ChildOutcome wait(std::chrono::milliseconds timeout);

private:
    struct Platform;
    std::unique_ptr<Platform> m_platform;
};

// Readable text of an outcome, for failure messages.
std::string describe(ChildOutcome const& outcome);

// The program `stem` (".exe" added on Windows) in the running program's directory.
std::filesystem::path programBesideThisOne(std::string const& stem);

}  // namespace norvane_test
