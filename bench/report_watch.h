// When a file was last written, seen as it happens: a file's modification
// time can't tell, since file systems stamp it from a clock that lags the
// real one by up to a tick (4 ms here). A thread waits for the system's
// change notices on the file's directory and notes the system clock as each
// one for the file arrives; the time it takes a notice to arrive counts
// against the crash, never for it. report_watch_posix.cpp (inotify, the
// file's closing after a write) and report_watch_windows.cpp
// (ReadDirectoryChangesW, the file's last change) implement it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

namespace crash_bench {

class ReportWatch {
public:
    // Starts watching `file`, whose directory must exist; an empty file is
    // made if there is none, which the writer then writes over.
    explicit ReportWatch(std::filesystem::path const& file);
    ~ReportWatch();
    ReportWatch(ReportWatch const&) = delete;
    ReportWatch& operator=(ReportWatch const&) = delete;

    // Stops watching, with every notice that was on its way taken, and gives
    // the system-clock microseconds since the Unix epoch of the last write;
    // none if there was none.
    std::optional<std::int64_t> lastWrite();

private:
    struct Platform;
    std::unique_ptr<Platform> m_platform;
};

}  // namespace crash_bench
