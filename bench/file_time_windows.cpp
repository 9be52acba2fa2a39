// Windows code only.
#include "file_time.h"

#include <windows.h>

namespace crash_bench {
namespace {

// FILETIME counts 100 ns steps from 1601-01-01.
constexpr std::int64_t kUnixEpochInFileTime = 116444736000000000;

}  // namespace

std::optional<std::int64_t> modifiedMicroseconds(std::filesystem::path const& file) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!::GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    std::int64_t const stamp = (static_cast<std::int64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
                               data.ftLastWriteTime.dwLowDateTime;
    return (stamp - kUnixEpochInFileTime) / 10;
}

}  // namespace crash_bench
