// A process's bitness from the ELF class of its program file. POSIX code only.
#include <backtrace/bt_helper.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace bt {

int is32pid(unsigned long const& processId) {
    std::string const path = processId == 0 ? std::string("/proc/self/exe")
                                            : "/proc/" + std::to_string(processId) + "/exe";
    int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return -1;
    unsigned char ident[5] = {};
    bool const read = ::read(file, ident, sizeof ident) == static_cast<ssize_t>(sizeof ident);
    ::close(file);
    if (!read || std::memcmp(ident,
                             "\x7f"
                             "ELF",
                             4) != 0)
        return -1;
    switch (ident[4]) {  // EI_CLASS
        case 1: return 1;
        case 2: return 0;
        default: return -1;
    }
}

}  // namespace bt
