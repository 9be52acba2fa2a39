#include "loopback_sockets.h"

#include <winsock2.h>
#include <ws2tcpip.h>

namespace norvane_test {
namespace sockets {
namespace {

bool readyWithin(SOCKET socket, int milliseconds) {
    WSAPOLLFD ready{socket, POLLRDNORM, 0};
    return ::WSAPoll(&ready, 1, milliseconds) > 0;
}

bool started() {
    static bool const ok = [] {
        WSADATA data;
        return ::WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return ok;
}

}  // namespace

std::intptr_t listenOnLoopback(std::uint16_t& port) {
    if (!started()) return kNone;
    SOCKET const listener = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof address;
    if (listener == INVALID_SOCKET || ::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener, 8) != 0 || ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        if (listener != INVALID_SOCKET) ::closesocket(listener);
        return kNone;
    }
    port = ntohs(address.sin_port);
    return static_cast<std::intptr_t>(listener);
}

std::intptr_t acceptWithin(std::intptr_t listener, int milliseconds) {
    if (!readyWithin(static_cast<SOCKET>(listener), milliseconds)) return kNone;
    SOCKET const connection = ::accept(static_cast<SOCKET>(listener), nullptr, nullptr);
    return connection == INVALID_SOCKET ? kNone : static_cast<std::intptr_t>(connection);
}

int receiveWithin(std::intptr_t connection, char* buffer, int size, int milliseconds) {
    if (!readyWithin(static_cast<SOCKET>(connection), milliseconds)) return -1;
    return ::recv(static_cast<SOCKET>(connection), buffer, size, 0);
}

void sendAll(std::intptr_t connection, std::string const& data) {
    std::size_t sent = 0;
    while (sent < data.size()) {
        int const now = ::send(static_cast<SOCKET>(connection), data.data() + sent,
                               static_cast<int>(data.size() - sent), 0);
        if (now <= 0) return;
        sent += static_cast<std::size_t>(now);
    }
}

void close(std::intptr_t socket) { ::closesocket(static_cast<SOCKET>(socket)); }

}  // namespace sockets
}  // namespace norvane_test
