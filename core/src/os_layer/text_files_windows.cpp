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

// Writers take turns, and the cheap turn is the open itself: a writer that
// shares the file with readers but not with other writers has it to itself
// for its one write. A handle with append access alone should make each
// write land at the end by itself, but not every implementation of the
// system keeps that promise between processes, and under Wine every call
// here is a round trip to its server: an open, a write and a close are the
// least a line can cost.
//
// A writer that finds the file held for writing waits its turn. Held by
// another writer's turn, the file is free again within a write; held by
// a program that keeps it open and shares it for writing, it can't be had
// alone at all, and writers then take turns through a lock on one byte far
// behind any data, which keeps no reader from the lines. Every wait is
// bounded: a writer stopped for good inside its turn (a thread ended by
// ExitProcess, a crashed process's parked thread) costs the others a line
// each, never a hang.
constexpr DWORD kSoleWriterSharing = FILE_SHARE_READ | FILE_SHARE_DELETE;
constexpr DWORD kSharedSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kTurnOffsetHigh = 0x40000000;
constexpr ULONGLONG kTurnWaitMilliseconds = 2000;
constexpr int kYieldsBeforeNaps = 50;

ScopedFileHandle openForAppending(std::wstring const& path, DWORD access, DWORD sharing) {
    return ScopedFileHandle(
        ::CreateFileW(path.c_str(), access, sharing, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool writeWhole(HANDLE file, std::string const& record) {
    DWORD written = 0;
    return ::WriteFile(file, record.data(), static_cast<DWORD>(record.size()), &written, nullptr) &&
           written == record.size();
}

// The lock's turn: taken only if free, so that the wait stays bounded.
bool writeUnderByteLock(HANDLE file, std::string const& record, bool& locked) {
    OVERLAPPED turn{};
    turn.OffsetHigh = kTurnOffsetHigh;
    locked = ::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &turn) != FALSE;
    if (!locked) return false;
    bool const whole = writeWhole(file, record);
    ::UnlockFileEx(file, 0, 1, 0, &turn);
    return whole;
}

enum class Turn { written, failed, notYet };

Turn tryTurn(std::wstring const& path, std::string const& record) {
    ScopedFileHandle const sole = openForAppending(path, FILE_APPEND_DATA, kSoleWriterSharing);
    if (sole.valid()) return writeWhole(sole.get(), record) ? Turn::written : Turn::failed;
    if (::GetLastError() != ERROR_SHARING_VIOLATION) return Turn::failed;
    // Locks need read or write access; append access alone won't do.
    ScopedFileHandle const shared = openForAppending(path, FILE_APPEND_DATA | GENERIC_READ, kSharedSharing);
    if (!shared.valid()) return ::GetLastError() == ERROR_SHARING_VIOLATION ? Turn::notYet : Turn::failed;
    bool locked = false;
    bool const whole = writeUnderByteLock(shared.get(), record, locked);
    if (!locked) return Turn::notYet;
    return whole ? Turn::written : Turn::failed;
}

}  // namespace

bool appendLine(std::wstring const& path, std::string const& line) { return appendLines(path, {line}); }

bool appendLines(std::wstring const& path, std::initializer_list<std::string> lines) {
    std::string record;
    for (std::string const& line : lines) record.append(line).append("\r\n");
    ULONGLONG const deadline = ::GetTickCount64() + kTurnWaitMilliseconds;
    for (int attempt = 0;; ++attempt) {
        Turn const turn = tryTurn(path, record);
        if (turn != Turn::notYet) return turn == Turn::written;
        if (::GetTickCount64() >= deadline) return false;
        ::Sleep(attempt < kYieldsBeforeNaps ? 0 : 1);
    }
}

}  // namespace os_layer
}  // namespace norvane_1
