// Windows code only: ReadDirectoryChangesW, which notes each change of a
// file's contents; there is no notice of its closing, so the last change
// is the write.
#include "report_watch.h"

#include "scoped_handle_windows.h"

#include <windows.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

namespace crash_bench {
namespace {

constexpr DWORD kWaitMilliseconds = 20;
constexpr DWORD kChanges = FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_FILE_NAME;

std::int64_t nowMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

struct ReportWatch::Platform {
    norvane_1::ScopedFileHandle directory;
    norvane_1::ScopedHandle noticed{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::wstring name;
    std::atomic<bool> stop{false};
    std::atomic<std::int64_t> last{0};
    std::thread thread;
    alignas(DWORD) char buffer[16384];
    OVERLAPPED pending{};

    bool ask() {
        ::ResetEvent(noticed.get());
        pending = OVERLAPPED{};
        pending.hEvent = noticed.get();
        return ::ReadDirectoryChangesW(directory.get(), buffer, sizeof buffer, FALSE, kChanges, nullptr, &pending,
                                       nullptr) != FALSE;
    }

    void take(DWORD got) {
        std::int64_t const now = nowMicroseconds();
        for (char* at = buffer; got != 0;) {
            auto const* notice = reinterpret_cast<FILE_NOTIFY_INFORMATION const*>(at);
            if (name == std::wstring(notice->FileName, notice->FileNameLength / sizeof(wchar_t))) last = now;
            if (notice->NextEntryOffset == 0) break;
            at += notice->NextEntryOffset;
        }
    }

    void watch() {
        while (ask()) {
            // After the stop, one more wait takes what is on its way.
            bool const stopping = stop;
            DWORD got = 0;
            if (::GetOverlappedResultEx(directory.get(), &pending, &got, kWaitMilliseconds, FALSE)) {
                take(got);
                continue;
            }
            ::CancelIoEx(directory.get(), &pending);
            ::GetOverlappedResult(directory.get(), &pending, &got, TRUE);
            if (stopping) return;
        }
    }
};

ReportWatch::ReportWatch(std::filesystem::path const& file) : m_platform(new Platform) {
    norvane_1::ScopedFileHandle const created(::CreateFileW(file.c_str(), GENERIC_WRITE,
                                                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                                            FILE_ATTRIBUTE_NORMAL, nullptr));
    m_platform->directory = norvane_1::ScopedFileHandle(::CreateFileW(
        file.parent_path().c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr));
    m_platform->name = file.filename().wstring();
    if (m_platform->directory.valid()) m_platform->thread = std::thread([this] { m_platform->watch(); });
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
