// The watching thread. Portable code only.
#include "report_watch.h"

namespace crash_bench {
namespace {

// How long one wait lasts: how soon the thread sees the stop.
constexpr std::chrono::milliseconds kPatience{20};

std::int64_t nowMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

ReportWatch::ReportWatch(std::filesystem::path const& file) : m_notices(ReportNotices::open(file)) {
    if (m_notices) m_thread = std::thread([this] { watch(); });
}

ReportWatch::~ReportWatch() { lastWrite(); }

void ReportWatch::watch() {
    using Notice = ReportNotices::Notice;
    while (!m_stop) {
        if (m_notices->await(kPatience) == Notice::file) m_last = nowMicroseconds();
    }
    // After the stop: what is on its way, until a wait brings nothing.
    for (Notice notice; (notice = m_notices->await(kPatience)) != Notice::none;) {
        if (notice == Notice::file) m_last = nowMicroseconds();
    }
}

std::optional<std::int64_t> ReportWatch::lastWrite() {
    if (m_thread.joinable()) {
        m_stop = true;
        m_thread.join();
    }
    std::int64_t const last = m_last;
    return last != 0 ? std::optional<std::int64_t>(last) : std::nullopt;
}

}  // namespace crash_bench
