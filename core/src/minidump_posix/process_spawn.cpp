// Starting the handler process on Linux and waiting for it. POSIX code only.
#include "minidump_internal/platform.h"

#include <vantix_2_18/utf.h>

#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>

extern char** environ;

namespace norvane_1 {
namespace platform {

int spawnAndWait(std::wstring const& program, std::vector<std::wstring> const& arguments) {
    std::vector<std::string> texts{VANTIX_2_18::utf::to_utf8(program)};
    for (auto const& argument : arguments) texts.push_back(VANTIX_2_18::utf::to_utf8(argument));
    std::vector<char*> argv;
    for (auto& text : texts) argv.push_back(&text[0]);
    argv.push_back(nullptr);

    pid_t child = 0;
    if (::posix_spawn(&child, texts[0].c_str(), nullptr, nullptr, argv.data(), environ) != 0) return -1;
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    // A handler killed by a signal reports it the way a shell would.
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
}

}  // namespace platform
}  // namespace norvane_1
