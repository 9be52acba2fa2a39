// A small HTTP server on the loopback address, for tests of sending: it
// takes requests on a thread of its own and answers each the way the test
// chose, or never, and keeps what it received.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace norvane_test {

struct ReceivedRequest {
    std::string method;
    std::string path;
    std::map<std::string, std::string> headers;  // names in lower case
    std::string body;
};

class LoopbackHttpServer {
public:
    enum class Answer { ok, serverError, never };

    // Listens on an ephemeral port of 127.0.0.1; throws std::runtime_error
    // if it can't.
    explicit LoopbackHttpServer(Answer answer);
    ~LoopbackHttpServer();
    LoopbackHttpServer(LoopbackHttpServer const&) = delete;
    LoopbackHttpServer& operator=(LoopbackHttpServer const&) = delete;

    std::string url() const;  // "http://127.0.0.1:<port>/reports"
    std::vector<ReceivedRequest> requests() const;

private:
    void serve();
    void serveOne(std::intptr_t connection);

    Answer m_answer;
    std::uint16_t m_port = 0;  // before m_listener, which sets it
    std::intptr_t m_listener;
    std::atomic<bool> m_stop{false};
    mutable std::mutex m_mutex;
    std::vector<ReceivedRequest> m_requests;
    std::vector<std::intptr_t> m_heldConnections;  // never answered, closed at the end
    std::thread m_thread;
};

}  // namespace norvane_test
