// When a file was last written, in microseconds since the Unix epoch, as
// precisely as the file system keeps it. file_time_posix.cpp and
// file_time_windows.cpp implement it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace crash_bench {

std::optional<std::int64_t> modifiedMicroseconds(std::filesystem::path const& file);

}  // namespace crash_bench
