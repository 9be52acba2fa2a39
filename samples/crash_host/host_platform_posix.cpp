// POSIX code only.
#include "host_platform.h"

#include <norvane_1/norvane.h>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <ucontext.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace crash_host {
namespace {

void onHostSignal(int) {
    char const text[] = "crash_host: the host's own SIGSEGV handler ran\n";
    ::write(STDOUT_FILENO, text, sizeof text - 1);
    ::_exit(kHostFilterExitCode);
}

}  // namespace

// Arguments are in the encoding of the locale, which main() takes from the
// environment.
std::wstring wideArgument(char const* argument) {
    std::size_t const length = std::mbstowcs(nullptr, argument, 0);
    if (length == static_cast<std::size_t>(-1)) return std::wstring(argument, argument + std::strlen(argument));
    std::wstring wide(length, L'\0');
    std::mbstowcs(&wide[0], argument, length);
    return wide;
}

namespace {

void handOver(ucontext_t& context) {
    siginfo_t info;
    std::memset(&info, 0, sizeof info);
    info.si_signo = SIGTRAP;
    info.si_code = TRAP_BRKPT;
    std::printf("crash_host: captured instruction pointer 0x%016" PRIx64 "\n",
                static_cast<std::uint64_t>(context.uc_mcontext.gregs[REG_RIP]));
    std::fflush(stdout);
    norvane_1::ExceptionData data{SIGTRAP, &info, &context};
    norvane_1::runExceptionHandler(&data);
}

}  // namespace

void runOwnExceptionHandler() {
    ucontext_t context;
    ::getcontext(&context);
    handOver(context);
}

void runOwnExceptionHandlerOn(std::uint64_t stackPointer, std::uint64_t framePointer) {
    ucontext_t context;
    ::getcontext(&context);
    context.uc_mcontext.gregs[REG_RSP] = static_cast<greg_t>(stackPointer);
    context.uc_mcontext.gregs[REG_RBP] = static_cast<greg_t>(framePointer);
    handOver(context);
}

void replaceCrashFilter() {
    struct sigaction action {};
    action.sa_handler = onHostSignal;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGSEGV, &action, nullptr);
}

// Every thread has an entry in /proc/self/task.
std::size_t countThreads() {
    DIR* tasks = ::opendir("/proc/self/task");
    if (tasks == nullptr) return 0;
    std::size_t count = 0;
    while (dirent const* entry = ::readdir(tasks)) {
        if (entry->d_name[0] != '.') ++count;
    }
    ::closedir(tasks);
    return count;
}

void ignoreChildProcessEnds() { ::signal(SIGCHLD, SIG_IGN); }

void setEnvironmentVariable(char const* name, char const* value) {
    if (value != nullptr) {
        ::setenv(name, value, 1);
    } else {
        ::unsetenv(name);
    }
}

void holdUpTheNextCrash(std::string const& directory) {
    std::string const path = directory + "/never_answers.log";
    ::unlink(path.c_str());
    if (::mkfifo(path.c_str(), 0600) != 0) std::abort();
    // Newer than any log the library writes meanwhile.
    timespec const tomorrow[2] = {{::time(nullptr) + 86400, 0}, {::time(nullptr) + 86400, 0}};
    ::utimensat(AT_FDCWD, path.c_str(), tomorrow, 0);
}

}  // namespace crash_host
