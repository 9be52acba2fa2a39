// The task service against clients that misbehave on purpose. Each fault is
// followed by a well-formed request that must still be served: no client
// may crash the process, hold the service beyond its patience, or stop it.
#include <norvane_1/handler_state.h>
#include <norvane_1/minidump_task.h>

#include "file_text.h"
#include "minidump_internal/task_channel.h"
#include "minidump_internal/task_messages.h"
#include "test_environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using norvane_1::task_channel::Connection;

constexpr auto kAnswerPatience = 10s;  // beyond the service's 3 s for a silent client

// The bytes of a request with `code`, cut or padded to `size`.
std::vector<unsigned char> request(std::uint32_t code, std::size_t size = sizeof(norvane_1::task::Request)) {
    std::vector<unsigned char> bytes(size);
    std::memcpy(bytes.data(), &code, std::min(size, sizeof code));
    return bytes;
}

class TaskService : public ::testing::Test {
protected:
    void SetUp() override { norvane_1::startExecuteMinidumpTaskthread(); }
    // A collection makes the process's state; it goes with the service.
    void TearDown() override {
        norvane_1::stopExecuteMinidumpTaskThread();
        if (!norvane_1::HandlerState::isNull()) norvane_1::HandlerState::get()->release();
    }

    // A raw client: the channel itself, with nothing of the protocol.
    static std::unique_ptr<Connection> connect() {
        EXPECT_TRUE(norvane_1::task_channel::waitForServer());
        return norvane_1::task_channel::openClient();
    }

    static std::string answerTo(std::vector<unsigned char> const& bytes) {
        std::unique_ptr<Connection> client = connect();
        if (!client) return "no connection";
        if (!bytes.empty() && !client->write(bytes.data(), bytes.size())) return "not sent";
        char reply[64] = {};
        std::size_t const got = client->read(reply, sizeof reply, kAnswerPatience);
        return std::string(reply, got);
    }

    // A request the service must answer: code 0 is answered "FAIL".
    static void expectServed() { EXPECT_EQ(answerTo(request(0)).substr(0, 4), "FAIL"); }

    norvane_test::ScratchDirectory logs{"task-service"};
    norvane_test::ScopedVariable logDirectory{"NORVANE_LOG_DIR", logs.path().string()};
};

struct ClientFault {
    char const* name;
    std::vector<unsigned char> bytes;
    char const* answer;  // the first four bytes of the reply; "" for none
};

void PrintTo(ClientFault const& fault, std::ostream* out) { *out << fault.name; }

class MisbehavingClients : public TaskService, public ::testing::WithParamInterface<ClientFault> {};

TEST_P(MisbehavingClients, AreAnsweredOrDroppedAndTheServiceGoesOn) {
    EXPECT_EQ(answerTo(GetParam().bytes).substr(0, 4), GetParam().answer);
    expectServed();
}

INSTANTIATE_TEST_SUITE_P(
    TaskService, MisbehavingClients,
    testing::Values(ClientFault{"connectAndClose", {}, ""},  // nothing sent: dropped after the service's patience
                    ClientFault{"lessThanACode", request(1, 2), "FAIL"},
                    ClientFault{"truncated", request(0, 100), "FAIL"},
                    ClientFault{"oversize", request(0, 10000), "FAIL"}, ClientFault{"codeThree", request(3), "FAIL"},
                    ClientFault{"codeAllOnes", request(0xFFFFFFFF), "FAIL"}));

TEST_F(TaskService, AClientGoneBeforeItsAnswerCostsNothing) {
    {
        std::unique_ptr<Connection> client = connect();
        ASSERT_TRUE(client);
        auto const bytes = request(norvane_1::fallbackInProc);
        ASSERT_TRUE(client->write(bytes.data(), bytes.size()));
    }  // closed while its task runs
    expectServed();
}

TEST_F(TaskService, AThousandClientsInARowAreEachAnswered) {
    int answered = 0;
    for (int i = 0; i < 1000; ++i) answered += answerTo(request(0)).substr(0, 4) == "FAIL";
    EXPECT_EQ(answered, 1000);
}

// Back to back and side by side: none loses its "PASS".
TEST_F(TaskService, TwoClientsAtOnceBothGetTheirAnswer) {
    bool first = false;
    bool second = false;
    std::thread other(
        [&second] { second = norvane_1::executeMinidumpTask(norvane_1::fallbackInProc, nullptr, 0, nullptr); });
    first = norvane_1::executeMinidumpTask(norvane_1::fallbackInProc, nullptr, 0, nullptr);
    other.join();
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
}

TEST(TaskServiceClient, WithoutAServiceFailsAtOnce) {
    norvane_test::ScratchDirectory logs("task-client");
    norvane_test::ScopedVariable logDirectory("NORVANE_LOG_DIR", logs.path().string());
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(norvane_1::executeMinidumpTask(norvane_1::fallbackInProc, nullptr, 0, nullptr));
    EXPECT_FALSE(norvane_1::executeMinidumpTask(norvane_1::fallbackInProc, nullptr, 4096, nullptr));
    char data[] = "too much";
    EXPECT_FALSE(norvane_1::executeMinidumpTask(norvane_1::fallbackInProc, data, 4096, nullptr));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

}  // namespace
