// The few socket calls the loopback server makes, for either platform's
// socket library. loopback_sockets_posix.cpp and _windows.cpp implement it.
#pragma once

#include <cstdint>
#include <string>

namespace norvane_test {
namespace sockets {

constexpr std::intptr_t kNone = -1;

// A listening socket on 127.0.0.1 and the port it got; kNone on failure.
std::intptr_t listenOnLoopback(std::uint16_t& port);
// A connection, or kNone when none came within the time.
std::intptr_t acceptWithin(std::intptr_t listener, int milliseconds);
// Bytes received (0 at the end, negative on error), waiting at most the time.
int receiveWithin(std::intptr_t connection, char* buffer, int size, int milliseconds);
void sendAll(std::intptr_t connection, std::string const& data);
void close(std::intptr_t socket);

}  // namespace sockets
}  // namespace norvane_test
