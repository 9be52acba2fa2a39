// When a file was last written, seen as it happens: a file's modification
// time can't tell, since file systems stamp it from a clock that lags the
// real one by up to a tick (4 ms here). A thread waits for the system's
// change notices about the file and notes the system clock as each one
// arrives; the time it takes a notice to arrive counts against the crash,
// never for it. report_watch.cpp holds the thread; the notices come from
// report_notices_posix.cpp (inotify, the file's closing after a write) and
// report_notices_windows.cpp (ReadDirectoryChangesW, the file's last change).
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <thread>

namespace crash_bench {

// The system's change notices about one file.
class ReportNotices {
public:
    enum class Notice { none, otherFile, file };

    // Starts taking notices about `file`, whose directory must exist; an
    // empty file is made if there is none, which the writer then writes
    // over. None if the system won't give notices.
    static std::unique_ptr<ReportNotices> open(std::filesystem::path const& file);
    virtual ~ReportNotices() = default;

    // Waits up to `patience` for notices and takes those that came: `file`
    // if one of them is about the file.
    virtual Notice await(std::chrono::milliseconds patience) = 0;
};

class ReportWatch {
public:
    // Starts watching `file`, as ReportNotices::open says.
    explicit ReportWatch(std::filesystem::path const& file);
    ~ReportWatch();
    ReportWatch(ReportWatch const&) = delete;
    ReportWatch& operator=(ReportWatch const&) = delete;

    // Stops watching, with every notice that was on its way taken, and gives
    // the system-clock microseconds since the Unix epoch of the last write;
    // none if there was none.
    std::optional<std::int64_t> lastWrite();

private:
    void watch();

    std::unique_ptr<ReportNotices> m_notices;
    std::atomic<bool> m_stop{false};
    std::atomic<std::int64_t> m_last{0};
    std::thread m_thread;
};

}  // namespace crash_bench
