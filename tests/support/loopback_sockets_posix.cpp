#include "loopback_sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace norvane_test {
namespace sockets {
namespace {

bool readyWithin(int socket, int milliseconds) {
    pollfd ready{socket, POLLIN, 0};
    return ::poll(&ready, 1, milliseconds) > 0;
}

}  // namespace

std::intptr_t listenOnLoopback(std::uint16_t& port) {
    int const listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (listener < 0 || ::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener, 8) != 0 || ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        if (listener >= 0) ::close(listener);
        return kNone;
    }
    port = ntohs(address.sin_port);
    return listener;
}

std::intptr_t acceptWithin(std::intptr_t listener, int milliseconds) {
    if (!readyWithin(static_cast<int>(listener), milliseconds)) return kNone;
    int const connection = ::accept(static_cast<int>(listener), nullptr, nullptr);
    return connection < 0 ? kNone : connection;
}

int receiveWithin(std::intptr_t connection, char* buffer, int size, int milliseconds) {
    if (!readyWithin(static_cast<int>(connection), milliseconds)) return -1;
    return static_cast<int>(::recv(static_cast<int>(connection), buffer, static_cast<std::size_t>(size), 0));
}

void sendAll(std::intptr_t connection, std::string const& data) {
    std::size_t sent = 0;
    while (sent < data.size()) {
        ssize_t const now = ::send(static_cast<int>(connection), data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
        if (now <= 0) return;
        sent += static_cast<std::size_t>(now);
    }
}

void close(std::intptr_t socket) { ::close(static_cast<int>(socket)); }

}  // namespace sockets
}  // namespace norvane_test
