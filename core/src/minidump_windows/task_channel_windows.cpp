// The task service's channel on Windows: the named pipe
// "\\.\pipe\minidump_task_pipe". Windows code only.
//
// The pipe's attributes are fixed: duplex, byte mode, blocking, any number
// of instances, 2064-byte buffers. Three things go beyond the bare calls,
// because without them back-to-back clients lose their answers:
//  - the server makes the next instance as soon as a client has connected
//    (the service calls create() then), so that a second client finds one;
//  - the client, when every instance is busy, waits for the pipe again and
//    tries again, within its one call;
//  - the server doesn't disconnect a client before it has taken the reply:
//    it waits, with a bound, until the client hangs up.
// Reads on the server wait for data with a bound as well (PeekNamedPipe,
// since the pipe is not opened for overlapped I/O): a client that connects
// and sends nothing must not hold the service.
#include "minidump_internal/task_channel.h"
#include "scoped_handle_windows.h"

#include <windows.h>

#include <chrono>
#include <thread>

namespace norvane_1 {
namespace task_channel {
namespace {

constexpr wchar_t kPipeName[] = L"\\\\.\\pipe\\minidump_task_pipe";
constexpr DWORD kBufferSize = 2064;
constexpr std::chrono::milliseconds kPollInterval{2};
constexpr int kBusyRetries = 100;

// Bytes waiting in the pipe; false when the other end has gone.
bool waitingBytes(HANDLE pipe, DWORD& available) {
    return ::PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr) != FALSE;
}

class PipeConnection final : public Connection {
public:
    PipeConnection(ScopedFileHandle pipe, bool server) : m_pipe(std::move(pipe)), m_server(server) {}
    ~PipeConnection() override {
        if (m_server) ::DisconnectNamedPipe(m_pipe.get());
    }
    PipeConnection(PipeConnection const&) = delete;
    PipeConnection& operator=(PipeConnection const&) = delete;

    std::size_t read(void* buffer, std::size_t capacity, std::chrono::milliseconds patience) override {
        if (patience != kNoTimeLimit && !dataWithin(patience)) return 0;
        DWORD got = 0;
        if (!::ReadFile(m_pipe.get(), buffer, static_cast<DWORD>(capacity), &got, nullptr)) return 0;
        return got;
    }

    bool write(void const* bytes, std::size_t size) override {
        DWORD written = 0;
        return ::WriteFile(m_pipe.get(), bytes, static_cast<DWORD>(size), &written, nullptr) && written == size;
    }

    void flush(std::chrono::milliseconds patience) override {
        if (!m_server) {
            ::FlushFileBuffers(m_pipe.get());
            return;
        }
        // Until the client hangs up, dropping whatever else it sends.
        auto const until = std::chrono::steady_clock::now() + patience;
        char rest[kBufferSize];
        DWORD available = 0;
        while (waitingBytes(m_pipe.get(), available) && std::chrono::steady_clock::now() < until) {
            DWORD got = 0;
            if (available == 0) {
                std::this_thread::sleep_for(kPollInterval);
            } else if (!::ReadFile(m_pipe.get(), rest, sizeof rest, &got, nullptr)) {
                return;
            }
        }
    }

private:
    bool dataWithin(std::chrono::milliseconds patience) {
        auto const until = std::chrono::steady_clock::now() + patience;
        DWORD available = 0;
        while (waitingBytes(m_pipe.get(), available)) {
            if (available > 0) return true;
            if (std::chrono::steady_clock::now() >= until) return false;
            std::this_thread::sleep_for(kPollInterval);
        }
        return false;
    }

    ScopedFileHandle m_pipe;
    bool m_server;
};

class PipeServer final : public Server {
public:
    bool create() override {
        m_next = ScopedFileHandle(::CreateNamedPipeW(kPipeName, PIPE_ACCESS_DUPLEX, 0, PIPE_UNLIMITED_INSTANCES,
                                                     kBufferSize, kBufferSize, 0, nullptr));
        return m_next.valid();
    }

    // A client that came between the instance's creation and this call is
    // connected already (ERROR_PIPE_CONNECTED); one that came and has gone
    // again (ERROR_NO_DATA) is a client too, whose request may still wait
    // to be read: the next instance is made for both before this one closes.
    std::unique_ptr<Connection> connect() override {
        ScopedFileHandle pipe = std::move(m_next);
        if (!pipe.valid()) return nullptr;
        if (!::ConnectNamedPipe(pipe.get(), nullptr)) {
            DWORD const error = ::GetLastError();
            if (error != ERROR_PIPE_CONNECTED && error != ERROR_NO_DATA) return nullptr;
        }
        return std::make_unique<PipeConnection>(std::move(pipe), true);
    }

private:
    ScopedFileHandle m_next;
};

}  // namespace

std::unique_ptr<Server> makeServer() { return std::make_unique<PipeServer>(); }

bool waitForServer() { return ::WaitNamedPipeW(kPipeName, NMPWAIT_WAIT_FOREVER) != FALSE; }

std::unique_ptr<Connection> openClient() {
    for (int attempt = 0; attempt < kBusyRetries; ++attempt) {
        ScopedFileHandle pipe(::CreateFileW(kPipeName, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                            FILE_ATTRIBUTE_NORMAL, nullptr));
        if (pipe.valid()) return std::make_unique<PipeConnection>(std::move(pipe), false);
        if (::GetLastError() != ERROR_PIPE_BUSY || !::WaitNamedPipeW(kPipeName, NMPWAIT_WAIT_FOREVER)) break;
    }
    return nullptr;
}

}  // namespace task_channel
}  // namespace norvane_1
