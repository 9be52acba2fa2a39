// A Windows handle that closes itself. Windows code only.
//
// Win32 has two values for "no handle": CreateFile, CreateNamedPipe and
// CreateToolhelp32Snapshot fail with INVALID_HANDLE_VALUE, while OpenProcess,
// CreateEvent, CreateThread and CreateFileMapping fail with null. The two
// can't be one: INVALID_HANDLE_VALUE is also what GetCurrentProcess gives,
// a handle that works and must not be closed. So the type is told which
// value its maker fails with, and a `ScopedFileHandle` (INVALID_HANDLE_VALUE)
// is a different type from a `ScopedHandle` (null): a handle can't be taken
// for valid, or closed, by the rule of the other kind.
#pragma once

#include <windows.h>

#include <utility>

namespace norvane_1 {

enum class NoHandle { null, invalidValue };

template <NoHandle kNone>
class BasicScopedHandle {
public:
    static HANDLE none() { return kNone == NoHandle::null ? nullptr : INVALID_HANDLE_VALUE; }

    BasicScopedHandle() = default;
    explicit BasicScopedHandle(HANDLE handle) : m_handle(handle) {}
    ~BasicScopedHandle() { reset(); }
    BasicScopedHandle(BasicScopedHandle&& other) noexcept : m_handle(other.release()) {}
    BasicScopedHandle& operator=(BasicScopedHandle&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    BasicScopedHandle(BasicScopedHandle const&) = delete;
    BasicScopedHandle& operator=(BasicScopedHandle const&) = delete;

    HANDLE get() const { return m_handle; }
    bool valid() const { return m_handle != none(); }
    explicit operator bool() const { return valid(); }
    HANDLE release() { return std::exchange(m_handle, none()); }
    void reset(HANDLE handle = none()) {
        HANDLE const old = std::exchange(m_handle, handle);
        if (old != none()) ::CloseHandle(old);
    }

private:
    HANDLE m_handle = none();
};

// What OpenProcess, CreateEvent, CreateThread, CreateFileMapping give.
using ScopedHandle = BasicScopedHandle<NoHandle::null>;
// What CreateFile, CreateNamedPipe, CreateToolhelp32Snapshot give.
using ScopedFileHandle = BasicScopedHandle<NoHandle::invalidValue>;

}  // namespace norvane_1
