// Sending a report: the tool started as a child against a server on the
// loopback address that answers, fails, or never answers; what arrived and
// what stayed behind is checked from outside.
#include "child_process.h"
#include "loopback_http_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace {

namespace fs = std::filesystem;
using norvane_test::LoopbackHttpServer;

struct SendingCase {
    char const* name;
    std::optional<LoopbackHttpServer::Answer> server;  // none: no endpoint configured
    bool reportExists;
    bool oldCopyInOutbox;  // kept by an earlier attempt; must give way
    int exitCode;
    std::size_t requests;
    bool keptInOutbox;
};

void PrintTo(SendingCase const& test, std::ostream* out) { *out << test.name; }

class ReportSending : public testing::TestWithParam<SendingCase> {};

std::string fileText(fs::path const& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST_P(ReportSending, DeliversOrKeepsTheReport) {
    SendingCase const& test = GetParam();
    fs::path const scratch = fs::temp_directory_path() / ("kelmur-send-" + std::string(test.name));
    fs::remove_all(scratch);
    fs::create_directories(scratch);
    fs::path const report = scratch / "report-42-2026-01-01-00-00-00-1.txt";
    std::string const text = "[ProcessDump]\nExecutable: caf\xc3\xa9.exe\n\n";
    if (test.reportExists) std::ofstream(report, std::ios::binary) << text;
    if (test.oldCopyInOutbox) {
        fs::create_directories(scratch / "outbox");
        std::ofstream(scratch / "outbox" / report.filename(), std::ios::binary) << "an older copy, longer than the report";
    }

    std::optional<LoopbackHttpServer> server;
    if (test.server) server.emplace(*test.server);
    norvane_test::ChildOptions options;
    options.program = norvane_test::programBesideThisOne("kelmur-feedback");
    options.arguments = {"-send-crash-report", report.u8string(), "-send-crash-report", "Caf\xc3\xa9 UI freeze report"};
    options.environment = {{"KELMUR_FEEDBACK_SEND_URL", server ? std::optional(server->url()) : std::nullopt},
                           {"KELMUR_FEEDBACK_SEND_TIMEOUT_MS", std::string("1000")},
                           {"KELMUR_FEEDBACK_OUTBOX", (scratch / "outbox").u8string()},
                           {"KELMUR_FEEDBACK_RECORD", std::nullopt}};
    auto const started = std::chrono::steady_clock::now();
    auto const outcome = norvane_test::ChildProcess(options).wait(std::chrono::seconds(60));
    ASSERT_TRUE(outcome.finished && outcome.exited);
    EXPECT_EQ(outcome.exitCode, static_cast<std::uint32_t>(test.exitCode));
    // Two attempts of at most a second each, and the start under Wine.
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(15));

    std::size_t const received = server ? server->requests().size() : 0;
    EXPECT_EQ(received, test.requests);
    if (received > 0) {
        auto request = server->requests().front();
        EXPECT_EQ(request.method, "POST");
        EXPECT_EQ(request.body, text);
        EXPECT_EQ(request.headers["x-report-title"], "Caf%C3%A9%20UI%20freeze%20report");
        EXPECT_EQ(request.headers["x-report-name"], "report-42-2026-01-01-00-00-00-1.txt");
    }
    fs::path const kept = scratch / "outbox" / report.filename();
    EXPECT_EQ(fs::exists(kept), test.keptInOutbox);
    if (test.keptInOutbox) {
        EXPECT_EQ(fileText(kept), text);
    }
    fs::remove_all(scratch);
}

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedback, ReportSending,
    testing::Values(SendingCase{"delivered", LoopbackHttpServer::Answer::ok, true, false, 0, 1, false},
                    SendingCase{"serverError", LoopbackHttpServer::Answer::serverError, true, false, 1, 2, true},
                    SendingCase{"neverAnswers", LoopbackHttpServer::Answer::never, true, false, 1, 2, true},
                    SendingCase{"noEndpoint", std::nullopt, true, false, 1, 0, true},
                    SendingCase{"noEndpointAgain", std::nullopt, true, true, 1, 0, true},
                    SendingCase{"noReport", LoopbackHttpServer::Answer::ok, false, false, 1, 0, false}));

}  // namespace
