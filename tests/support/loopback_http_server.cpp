#include "loopback_http_server.h"

#include "loopback_sockets.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

namespace norvane_test {
namespace {

constexpr int kPollMilliseconds = 50;
constexpr int kReadPatienceMilliseconds = 5000;

// The request line and headers of `head` (up to the blank line).
ReceivedRequest parseHead(std::string const& head) {
    ReceivedRequest request;
    std::istringstream lines(head);
    std::string line;
    std::getline(lines, line);
    std::istringstream(line) >> request.method >> request.path;
    while (std::getline(lines, line) && line != "\r" && !line.empty()) {
        if (line.back() == '\r') line.pop_back();
        auto const colon = line.find(':');
        if (colon == std::string::npos) continue;
        std::string value = line.substr(colon + 1);
        value.erase(0, value.find_first_not_of(' '));
        std::string name = line.substr(0, colon);
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
        request.headers[name] = value;
    }
    return request;
}

// A whole request: the head, then as many body bytes as Content-Length says.
bool receiveRequest(std::intptr_t connection, ReceivedRequest& request) {
    std::string data;
    char buffer[65536];
    std::size_t headEnd = std::string::npos;
    std::size_t wanted = 0;
    for (;;) {
        if (headEnd == std::string::npos && (headEnd = data.find("\r\n\r\n")) != std::string::npos) {
            request = parseHead(data.substr(0, headEnd + 2));
            auto const length = request.headers.find("content-length");
            wanted = headEnd + 4 + (length == request.headers.end() ? 0 : std::stoul(length->second));
        }
        if (headEnd != std::string::npos && data.size() >= wanted) {
            request.body = data.substr(headEnd + 4, wanted - headEnd - 4);
            return true;
        }
        int const got = sockets::receiveWithin(connection, buffer, sizeof buffer, kReadPatienceMilliseconds);
        if (got <= 0) return false;
        data.append(buffer, static_cast<std::size_t>(got));
    }
}

}  // namespace

LoopbackHttpServer::LoopbackHttpServer(Answer answer)
    : m_answer(answer), m_listener(sockets::listenOnLoopback(m_port)) {
    if (m_listener == sockets::kNone) throw std::runtime_error("no loopback port to listen on");
    m_thread = std::thread([this] { serve(); });
}

LoopbackHttpServer::~LoopbackHttpServer() {
    m_stop = true;
    m_thread.join();
    for (std::intptr_t connection : m_heldConnections) sockets::close(connection);
    sockets::close(m_listener);
}

std::string LoopbackHttpServer::url() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/reports"; }

std::vector<ReceivedRequest> LoopbackHttpServer::requests() const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    return m_requests;
}

void LoopbackHttpServer::serve() {
    while (!m_stop) {
        std::intptr_t const connection = sockets::acceptWithin(m_listener, kPollMilliseconds);
        if (connection != sockets::kNone) serveOne(connection);
    }
}

void LoopbackHttpServer::serveOne(std::intptr_t connection) {
    ReceivedRequest request;
    bool const complete = receiveRequest(connection, request);
    if (complete) {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_requests.push_back(request);
    }
    if (complete && m_answer == Answer::never) {
        m_heldConnections.push_back(connection);  // the client waits in vain
        return;
    }
    char const* status = m_answer == Answer::ok ? "200 OK" : "500 Internal Server Error";
    sockets::sendAll(connection,
                     std::string("HTTP/1.1 ") + status + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    sockets::close(connection);
}

}  // namespace norvane_test
