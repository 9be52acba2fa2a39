// POSIX code only.
#include "file_time.h"

#include <sys/stat.h>

namespace crash_bench {

std::optional<std::int64_t> modifiedMicroseconds(std::filesystem::path const& file) {
    struct stat info;
    if (::stat(file.c_str(), &info) != 0) return std::nullopt;
    return static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000 + info.st_mtim.tv_nsec / 1000;
}

}  // namespace crash_bench
