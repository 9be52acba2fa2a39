// POSIX code only: inotify, which notes a file's closing after a write. The
// watch is on the file itself, so that the other files written beside it
// (each creation-log record is one) bring no notices.
#include "report_watch.h"

#include "scoped_descriptor_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace crash_bench {
namespace {

class Inotify final : public ReportNotices {
public:
    explicit Inotify(norvane_1::ScopedDescriptor notices) : m_notices(std::move(notices)) {}

    Notice await(std::chrono::milliseconds patience) override {
        pollfd waiting{m_notices.get(), POLLIN, 0};
        if (::poll(&waiting, 1, static_cast<int>(patience.count())) <= 0) return Notice::none;
        alignas(inotify_event) char buffer[4096];
        return ::read(m_notices.get(), buffer, sizeof buffer) > 0 ? Notice::file : Notice::none;
    }

private:
    norvane_1::ScopedDescriptor m_notices;
};

}  // namespace

std::unique_ptr<ReportNotices> ReportNotices::open(std::filesystem::path const& file) {
    norvane_1::ScopedDescriptor notices(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    norvane_1::ScopedDescriptor const created(::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (!notices.valid() || ::inotify_add_watch(notices.get(), file.c_str(), IN_CLOSE_WRITE) < 0) return nullptr;
    return std::make_unique<Inotify>(std::move(notices));
}

}  // namespace crash_bench
