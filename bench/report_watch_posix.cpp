// POSIX code only: inotify, which notes a file's closing after a write. The
// watch is on the file itself, so that the other files written beside it
// (each creation-log record is one) don't wake this thread meanwhile.
#include "report_watch.h"

#include "scoped_descriptor_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace crash_bench {
namespace {

constexpr int kPollMilliseconds = 20;

std::int64_t nowMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

struct ReportWatch::Platform {
    norvane_1::ScopedDescriptor notices;
    std::atomic<bool> stop{false};
    std::atomic<std::int64_t> last{0};
    std::thread thread;

    // Takes what notices are there; false when none could be read.
    bool take() {
        alignas(inotify_event) char buffer[4096];
        ssize_t const got = ::read(notices.get(), buffer, sizeof buffer);
        if (got <= 0) return false;
        last = nowMicroseconds();
        return true;
    }

    void watch() {
        pollfd waiting{notices.get(), POLLIN, 0};
        while (!stop) {
            if (::poll(&waiting, 1, kPollMilliseconds) > 0) take();
        }
        while (take()) {
        }
    }
};

ReportWatch::ReportWatch(std::filesystem::path const& file) : m_platform(new Platform) {
    m_platform->notices = norvane_1::ScopedDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    norvane_1::ScopedDescriptor const created(::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    ::inotify_add_watch(m_platform->notices.get(), file.c_str(), IN_CLOSE_WRITE);
    m_platform->thread = std::thread([this] { m_platform->watch(); });
}

ReportWatch::~ReportWatch() { lastWrite(); }

std::optional<std::int64_t> ReportWatch::lastWrite() {
    if (m_platform->thread.joinable()) {
        m_platform->stop = true;
        m_platform->thread.join();
    }
    std::int64_t const last = m_platform->last;
    return last != 0 ? std::optional<std::int64_t>(last) : std::nullopt;
}

}  // namespace crash_bench
