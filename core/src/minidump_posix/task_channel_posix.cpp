// The task service's channel on Linux: a Unix-domain stream socket. POSIX
// code only.
//
// Windows names its pipe for the whole machine; here every process has a
// socket of its own, "minidump_task_pipe.<pid>", so that two processes that
// crash at once each serve their own handler. The sockets live in
// "norvane-<uid>" in the temporary directory (TMPDIR, else /tmp), which
// only their user may enter (mode 0700, checked, never a link), and the
// server also checks each client's credentials. A client looks for the
// service of its own process first, then for that of its parent: the
// handler process is the crashed process's child. A socket that a killed
// process left behind is removed when a process of that id starts its
// service, and a client that finds one is refused by it at once.
//
// The listening socket is made once and kept: the system queues the next
// clients while one is served, as the next pipe instance does on Windows.
#include "minidump_internal/task_channel.h"

#include "scoped_descriptor_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace norvane_1 {
namespace task_channel {
namespace {

constexpr int kBacklog = 16;
constexpr char kSocketPrefix[] = "minidump_task_pipe.";

// The user's own directory for the sockets, made if need be; none when the
// place is not safe (another owner, other users let in, a link).
std::optional<std::string> serviceDirectory() {
    char const* temporary = std::getenv("TMPDIR");
    std::string const directory = std::string(temporary && *temporary ? temporary : "/tmp") + "/norvane-" +
                                  std::to_string(::geteuid());
    if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) return std::nullopt;
    struct stat status {};
    if (::lstat(directory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid() ||
        (status.st_mode & 077) != 0) {
        return std::nullopt;
    }
    return directory;
}

std::optional<sockaddr_un> addressOf(pid_t process) {
    std::optional<std::string> const directory = serviceDirectory();
    if (!directory) return std::nullopt;
    std::string const path = *directory + "/" + kSocketPrefix + std::to_string(process);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return std::nullopt;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

int pollTimeout(std::chrono::milliseconds patience) {
    if (patience == kNoTimeLimit) return -1;
    return static_cast<int>(std::min<std::chrono::milliseconds::rep>(patience.count(), INT_MAX));
}

bool readable(int descriptor, std::chrono::milliseconds patience) {
    pollfd waiting{descriptor, POLLIN, 0};
    int ready;
    do {
        ready = ::poll(&waiting, 1, pollTimeout(patience));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

class SocketConnection final : public Connection {
public:
    explicit SocketConnection(ScopedDescriptor socket) : m_socket(std::move(socket)) {}

    std::size_t read(void* buffer, std::size_t capacity, std::chrono::milliseconds patience) override {
        if (!readable(m_socket.get(), patience)) return 0;
        ssize_t got;
        do {
            got = ::recv(m_socket.get(), buffer, capacity, 0);
        } while (got < 0 && errno == EINTR);
        return got > 0 ? static_cast<std::size_t>(got) : 0;
    }

    // MSG_NOSIGNAL: a client that has gone must not end this process by SIGPIPE.
    bool write(void const* bytes, std::size_t size) override {
        auto const* next = static_cast<char const*>(bytes);
        while (size > 0) {
            ssize_t const sent = ::send(m_socket.get(), next, size, MSG_NOSIGNAL);
            if (sent < 0 && errno == EINTR) continue;
            if (sent <= 0) return false;
            next += sent;
            size -= static_cast<std::size_t>(sent);
        }
        return true;
    }

    // What was sent stays readable after a close; the server still waits
    // for the client's hang-up, dropping whatever else it sends, so that both
    // platforms end a conversation alike.
    void flush(std::chrono::milliseconds patience) override {
        auto const until = std::chrono::steady_clock::now() + patience;
        char rest[4096];
        for (auto left = patience; left.count() > 0;) {
            if (!readable(m_socket.get(), left)) return;
            if (::recv(m_socket.get(), rest, sizeof rest, MSG_DONTWAIT) <= 0) return;
            left = std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        }
    }

private:
    ScopedDescriptor m_socket;
};

bool sameUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

class SocketServer final : public Server {
public:
    ~SocketServer() override {
        if (m_listening.valid()) ::unlink(m_address.sun_path);
    }

    bool create() override {
        if (m_listening.valid()) return true;
        std::optional<sockaddr_un> const address = addressOf(::getpid());
        if (!address) return false;
        ScopedDescriptor listening(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (!listening.valid()) return false;
        ::unlink(address->sun_path);  // left by a process that had this id before
        if (::bind(listening.get(), reinterpret_cast<sockaddr const*>(&*address), sizeof *address) != 0 ||
            ::listen(listening.get(), kBacklog) != 0) {
            return false;
        }
        m_address = *address;
        m_listening = std::move(listening);
        return true;
    }

    // A client of another user is turned away: connecting failed.
    std::unique_ptr<Connection> connect() override {
        int accepted;
        do {
            accepted = ::accept4(m_listening.get(), nullptr, nullptr, SOCK_CLOEXEC);
        } while (accepted < 0 && errno == EINTR);
        ScopedDescriptor client(accepted);
        if (!client.valid()) {
            ::unlink(m_address.sun_path);
            m_listening.reset();
            return nullptr;
        }
        if (!sameUser(client.get())) return nullptr;
        return std::make_unique<SocketConnection>(std::move(client));
    }

private:
    ScopedDescriptor m_listening;
    sockaddr_un m_address{};
};

// The sockets a client of this process may use, the nearest first.
std::vector<sockaddr_un> candidateServices() {
    std::vector<sockaddr_un> found;
    for (pid_t process : {::getpid(), ::getppid()}) {
        std::optional<sockaddr_un> const address = addressOf(process);
        struct stat status {};
        if (address && ::stat(address->sun_path, &status) == 0 && S_ISSOCK(status.st_mode)) found.push_back(*address);
    }
    return found;
}

}  // namespace

std::unique_ptr<Server> makeServer() { return std::make_unique<SocketServer>(); }

bool waitForServer() { return !candidateServices().empty(); }

// A full queue makes a blocking connect wait for room: that is the wait for
// a free endpoint. A socket nobody listens on refuses at once.
std::unique_ptr<Connection> openClient() {
    for (sockaddr_un const& address : candidateServices()) {
        ScopedDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (!socket.valid()) return nullptr;
        if (::connect(socket.get(), reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0) {
            return std::make_unique<SocketConnection>(std::move(socket));
        }
    }
    return nullptr;
}

}  // namespace task_channel
}  // namespace norvane_1
