// Sending a report: the tool started as a child against a server on the
// loopback address that answers, fails, or never answers; what arrived and
// what stayed behind is checked from outside. Then sends one after another
// under the size cap and the interval per product.
#include "child_process.h"
#include "file_text.h"
#include "loopback_http_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

namespace {

namespace fs = std::filesystem;
using norvane_test::LoopbackHttpServer;

// One run of the tool sending `report`, with the outbox beside it and the
// variables given; its output goes to output.txt there.
norvane_test::ChildOutcome sendWithTool(fs::path const& report, std::string const& title,
                                        std::map<std::string, std::optional<std::string>> environment) {
    norvane_test::ChildOptions options;
    options.program = norvane_test::programBesideThisOne("kelmur-feedback");
    options.arguments = {"-send-crash-report", report.u8string(), "-send-crash-report", title};
    environment["KELMUR_FEEDBACK_OUTBOX"] = (report.parent_path() / "outbox").u8string();
    environment["KELMUR_FEEDBACK_RECORD"] = std::nullopt;
    options.environment = std::move(environment);
    options.standardOutput = report.parent_path() / "output.txt";
    return norvane_test::ChildProcess(options).wait(std::chrono::seconds(60));
}

struct SendingCase {
    char const* name;
    std::optional<LoopbackHttpServer::Answer> server;  // none: no endpoint configured
    bool reportExists;
    int exitCode;
    std::size_t requests;
    bool keptInOutbox;
};

void PrintTo(SendingCase const& test, std::ostream* out) { *out << test.name; }

class ReportSending : public testing::TestWithParam<SendingCase> {};

TEST_P(ReportSending, DeliversOrKeepsTheReport) {
    SendingCase const& test = GetParam();
    fs::path const scratch = fs::temp_directory_path() / ("kelmur-send-" + std::string(test.name));
    fs::remove_all(scratch);
    fs::create_directories(scratch);
    fs::path const report = scratch / "report-42-2026-01-01-00-00-00-1.txt";
    std::string const text = "[ProcessDump]\nExecutable: caf\xc3\xa9.exe\n\n";
    if (test.reportExists) std::ofstream(report, std::ios::binary) << text;
    if (test.keptInOutbox) {  // a copy an earlier attempt kept must give way
        fs::create_directories(scratch / "outbox");
        std::ofstream(scratch / "outbox" / report.filename(), std::ios::binary)
            << "an older copy, longer than the report";
    }

    std::optional<LoopbackHttpServer> server;
    if (test.server) server.emplace(*test.server);
    auto const started = std::chrono::steady_clock::now();
    auto const outcome = sendWithTool(
        report, "Caf\xc3\xa9 UI freeze report",
        {{"KELMUR_FEEDBACK_SEND_URL", server ? std::optional(server->url()) : std::nullopt},
         {"KELMUR_FEEDBACK_SEND_TIMEOUT_MS", std::string("1000")}});
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
        EXPECT_EQ(norvane_test::fileText(kept), text);
    }
    fs::remove_all(scratch);
}

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedback, ReportSending,
    testing::Values(SendingCase{"delivered", LoopbackHttpServer::Answer::ok, true, 0, 1, false},
                    SendingCase{"serverError", LoopbackHttpServer::Answer::serverError, true, 1, 2, true},
                    SendingCase{"neverAnswers", LoopbackHttpServer::Answer::never, true, 1, 2, true},
                    SendingCase{"noEndpoint", std::nullopt, true, 1, 0, true},
                    SendingCase{"noReport", LoopbackHttpServer::Answer::ok, false, 1, 0, false}));

// One run of the tool in a sequence; "report" names the file
// "report-<report>.txt" of the product "product".
struct Send {
    char const* report;
    char const* product;
    char const* intervalS;  // KELMUR_FEEDBACK_SEND_INTERVAL_S; null: unset
    char const* maxBytes;   // KELMUR_FEEDBACK_SEND_MAX_BYTES; null: unset
    int exitCode;
    std::vector<std::string> arrived;  // the reports the server got in this run, in order
    char const* says;                  // in the tool's output; null: anything
};

struct PacingCase {
    char const* name;
    std::vector<Send> sends;
    std::set<std::string> leftInOutbox;
};

void PrintTo(PacingCase const& test, std::ostream* out) { *out << test.name; }

class PacedSending : public testing::TestWithParam<PacingCase> {};

std::string reportText(Send const& send) {
    return std::string("[ProcessDump]\nDescription: report&nbsp;") + send.report + "\nProduct: " + send.product +
           "; 1\n\n[Products]\nPackage Contents: " + send.product + "\n\n";
}

std::set<std::string> reportsIn(fs::path const& folder) {
    std::set<std::string> reports;
    for (auto const& entry : fs::directory_iterator(folder)) {
        std::string const name = entry.path().filename().u8string();
        if (name.rfind("report-", 0) == 0) reports.insert(name.substr(7, name.size() - 11));
    }
    return reports;
}

TEST_P(PacedSending, KeepsWhatMayNotGoAndSendsItWithTheNext) {
    PacingCase const& test = GetParam();
    fs::path const scratch = fs::temp_directory_path() / ("kelmur-pacing-" + std::string(test.name));
    fs::remove_all(scratch);
    fs::create_directories(scratch / "outbox");
    LoopbackHttpServer server(LoopbackHttpServer::Answer::ok);
    std::size_t seen = 0;
    for (Send const& step : test.sends) {
        fs::path const report = scratch / ("report-" + std::string(step.report) + ".txt");
        std::ofstream(report, std::ios::binary) << reportText(step);
        auto setting = [](char const* value) { return value ? std::optional<std::string>(value) : std::nullopt; };
        auto const outcome = sendWithTool(report, "title",
                                          {{"KELMUR_FEEDBACK_SEND_URL", server.url()},
                                           {"KELMUR_FEEDBACK_SEND_INTERVAL_S", setting(step.intervalS)},
                                           {"KELMUR_FEEDBACK_SEND_MAX_BYTES", setting(step.maxBytes)}});
        ASSERT_TRUE(outcome.finished && outcome.exited) << step.report;
        EXPECT_EQ(outcome.exitCode, static_cast<std::uint32_t>(step.exitCode)) << step.report;
        std::string const output = norvane_test::fileText(scratch / "output.txt");
        if (step.says) {
            EXPECT_NE(output.find(step.says), std::string::npos) << output;
        }

        auto const requests = server.requests();
        std::vector<std::string> arrived;
        for (; seen < requests.size(); ++seen) {
            std::string const name = requests[seen].headers.at("x-report-name");
            arrived.push_back(name.substr(7, name.size() - 11));
        }
        EXPECT_EQ(arrived, step.arrived) << step.report << ": " << output;
    }
    EXPECT_EQ(reportsIn(scratch / "outbox"), test.leftInOutbox);
    fs::remove_all(scratch);
}

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedback, PacedSending,
    testing::Values(PacingCase{"tooLarge", {{"a", "App", nullptr, "20", 1, {}, "more than the 20"}}, {"a"}},
                    PacingCase{"badValuesFallBack",
                               {{"a", "App", "soon", "-1", 0, {"a"}, "KELMUR_FEEDBACK_SEND_INTERVAL_S is 'soon'"}},
                               {}},
                    // Another product's interval is its own. An interval of 0
                    // stands for the time having passed.
                    PacingCase{"heldBackThenSentOldestFirst",
                               {{"a", "App", "3600", nullptr, 0, {"a"}, nullptr},
                                {"b", "App", "3600", nullptr, 1, {}, "the next may go from"},
                                {"c", "Other App", "3600", nullptr, 0, {"c"}, nullptr},
                                {"d", "App", "3600", nullptr, 1, {}, nullptr},
                                {"e", "App", "0", nullptr, 0, {"e", "b", "d"}, nullptr}},
                               {}}));

}  // namespace
