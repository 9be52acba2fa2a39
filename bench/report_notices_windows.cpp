// Windows code only: ReadDirectoryChangesW, which notes each change of a
// file's contents; there is no notice of its closing, so the last change
// is the write. The notices are those of the file's directory, which the
// other files written beside it (each creation-log record) bring too.
#include "report_watch.h"

#include "scoped_handle_windows.h"

#include <windows.h>

#include <string>

namespace crash_bench {
namespace {

constexpr DWORD kChanges = FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_FILE_NAME;

class DirectoryChanges final : public ReportNotices {
public:
    DirectoryChanges(norvane_1::ScopedFileHandle directory, std::wstring name)
        : m_directory(std::move(directory)), m_name(std::move(name)) {}

    // A request still pending when the watch ends is cancelled: its buffer
    // goes with this object.
    ~DirectoryChanges() override {
        if (!m_asked) return;
        DWORD got = 0;
        ::CancelIoEx(m_directory.get(), &m_pending);
        ::GetOverlappedResult(m_directory.get(), &m_pending, &got, TRUE);
    }

    // A request stays pending from one wait to the next; a notice that
    // comes between requests waits in the directory's own buffer.
    Notice await(std::chrono::milliseconds patience) override {
        if (!m_asked && !ask()) return Notice::none;
        DWORD got = 0;
        if (!::GetOverlappedResultEx(m_directory.get(), &m_pending, &got, static_cast<DWORD>(patience.count()),
                                     FALSE)) {
            return Notice::none;
        }
        m_asked = false;
        return aboutTheFile(got) ? Notice::file : Notice::otherFile;
    }

private:
    bool ask() {
        ::ResetEvent(m_noticed.get());
        m_pending = OVERLAPPED{};
        m_pending.hEvent = m_noticed.get();
        m_asked = ::ReadDirectoryChangesW(m_directory.get(), m_buffer, sizeof m_buffer, FALSE, kChanges, nullptr,
                                          &m_pending, nullptr) != FALSE;
        return m_asked;
    }

    bool aboutTheFile(DWORD got) const {
        for (char const* at = m_buffer; got != 0;) {
            auto const* notice = reinterpret_cast<FILE_NOTIFY_INFORMATION const*>(at);
            if (m_name == std::wstring(notice->FileName, notice->FileNameLength / sizeof(wchar_t))) return true;
            if (notice->NextEntryOffset == 0) break;
            at += notice->NextEntryOffset;
        }
        return false;
    }

    norvane_1::ScopedFileHandle m_directory;
    std::wstring m_name;
    norvane_1::ScopedHandle m_noticed{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    OVERLAPPED m_pending{};
    bool m_asked = false;
    alignas(DWORD) char m_buffer[16384];
};

}  // namespace

std::unique_ptr<ReportNotices> ReportNotices::open(std::filesystem::path const& file) {
    norvane_1::ScopedFileHandle const created(::CreateFileW(file.c_str(), GENERIC_WRITE,
                                                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                                            FILE_ATTRIBUTE_NORMAL, nullptr));
    norvane_1::ScopedFileHandle directory(::CreateFileW(
        file.parent_path().c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr));
    if (!directory.valid()) return nullptr;
    return std::make_unique<DirectoryChanges>(std::move(directory), file.filename().wstring());
}

}  // namespace crash_bench
