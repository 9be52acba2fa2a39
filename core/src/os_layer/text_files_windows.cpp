// Wide paths go to the wide open of the run-time library on Windows, which
// shares the file with other readers and writers. Appending goes to the
// system directly: the run-time library's append mode seeks to the end and
// then writes, and two processes doing that at once overwrite each other.
#include "text_files.h"

#include "scoped_handle_windows.h"

#include <windows.h>

namespace norvane_1 {
namespace os_layer {

void openTextFile(std::ofstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(path.c_str(), mode);
}

void openTextFile(std::ifstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(path.c_str(), mode);
}

namespace {

// Writers take turns through a lock on one byte far behind any data: it
// orders them without keeping readers from the lines. A handle with append
// access alone should make each write land at the end by itself, but not
// every implementation of the system keeps that promise between processes.
constexpr DWORD kTurnOffsetHigh = 0x40000000;

class AppendTurn {
public:
    explicit AppendTurn(HANDLE file) : m_file(file) {
        m_turn.OffsetHigh = kTurnOffsetHigh;
        m_held = ::LockFileEx(m_file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &m_turn) != FALSE;
    }
    ~AppendTurn() {
        if (m_held) ::UnlockFileEx(m_file, 0, 1, 0, &m_turn);
    }
    AppendTurn(AppendTurn const&) = delete;
    AppendTurn& operator=(AppendTurn const&) = delete;

private:
    HANDLE m_file;
    OVERLAPPED m_turn{};
    bool m_held = false;
};

}  // namespace

bool appendLine(std::wstring const& path, std::string const& line) { return appendLines(path, {line}); }

bool appendLines(std::wstring const& path, std::initializer_list<std::string> lines) {
    ScopedFileHandle const file(::CreateFileW(path.c_str(), FILE_APPEND_DATA | GENERIC_READ,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                              OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.valid()) return false;
    std::string record;
    for (std::string const& line : lines) record.append(line).append("\r\n");
    DWORD written = 0;
    AppendTurn const turn(file.get());
    return ::WriteFile(file.get(), record.data(), static_cast<DWORD>(record.size()), &written, nullptr) &&
           written == record.size();
}

}  // namespace os_layer
}  // namespace norvane_1
