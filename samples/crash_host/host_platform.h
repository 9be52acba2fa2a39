// The parts of the crash host that differ by platform.
// host_platform_posix.cpp and host_platform_windows.cpp implement them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace crash_host {

// The exit code of the host's own crash filter: seeing it means the host's
// filter outlived the library's.
constexpr int kHostFilterExitCode = 42;

// An argument as wide text, decoded the way the platform encodes arguments.
std::wstring wideArgument(char const* argument);

// Captures this thread's registers, prints the instruction pointer, and
// hands them to norvane_1::runExceptionHandler as a breakpoint exception
// (SIGTRAP on Linux). Returns only if the crash was passed on.
void runOwnExceptionHandler();
// The same with the stack and frame pointers replaced, as a damaged stack
// would leave them.
void runOwnExceptionHandlerOn(std::uint64_t stackPointer, std::uint64_t framePointer);

// Installs the host's own crash filter (SIGSEGV handler on Linux) over the
// library's. It prints a line and ends the process with kHostFilterExitCode.
void replaceCrashFilter();

// The number of threads the process has now.
std::size_t countThreads();

// Has the system reap ended child processes, as some hosts do (SIGCHLD
// ignored on Linux). Windows has no such setting: nothing happens there.
void ignoreChildProcessEnds();

// Sees to it that the crash that follows is held up on its way to the
// handler, as a lock left held by a crashed program holds it up. Linux: the
// newest ".log" file of `directory` (the log directory), which the worker
// reads for the report, becomes a FIFO nobody writes to. Windows: the
// shutdown callback waits for a lock that another thread keeps.
void holdUpTheNextCrash(std::string const& directory);

// Sets a variable of this process's environment, which the programs it
// starts inherit; null removes it.
void setEnvironmentVariable(char const* name, char const* value);

}  // namespace crash_host
