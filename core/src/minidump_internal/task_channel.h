// What the task service asks of the platform: a local, named, two-way byte
// stream with blocking connect, read and write. Portable interface;
// core/src/minidump_windows/task_channel_windows.cpp (the named pipe) and
// core/src/minidump_posix/task_channel_posix.cpp (a Unix-domain socket)
// implement it.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

namespace norvane_1 {
namespace task_channel {

// A patience that never runs out.
constexpr std::chrono::milliseconds kNoTimeLimit = std::chrono::milliseconds::max();

// One client's connection, at either end. Destroying it disconnects and
// closes it.
class Connection {
public:
    virtual ~Connection() = default;
    // One read of at most `capacity` bytes, waiting at most `patience` for
    // the first of them. The bytes read; 0 when none came in time, the other
    // end left, or the read failed.
    virtual std::size_t read(void* buffer, std::size_t capacity, std::chrono::milliseconds patience) = 0;
    // Writes all `size` bytes; false otherwise.
    virtual bool write(void const* bytes, std::size_t size) = 0;
    // Client: hands what was written on to the server. Server: waits, at
    // most `patience`, until the client has taken the reply and hung up, so
    // that closing can't throw the reply away unread.
    virtual void flush(std::chrono::milliseconds patience) = 0;
};

// The service's end, in this process.
class Server {
public:
    virtual ~Server() = default;
    // Makes the endpoint the next client connects to (a new instance of the
    // pipe; on Linux the listening socket, made once and kept). False when
    // it can't be made.
    virtual bool create() = 0;
    // Waits, with no time limit, for a client at the endpoint made last and
    // takes it. Null when that failed; the endpoint is then gone.
    virtual std::unique_ptr<Connection> connect() = 0;
};

std::unique_ptr<Server> makeServer();

// Client: whether a service is there to connect to; false at once if not.
bool waitForServer();
// Client: a connection to the service. While every endpoint is busy, it
// waits for one and tries again. Null when it can't connect.
std::unique_ptr<Connection> openClient();

}  // namespace task_channel
}  // namespace norvane_1
