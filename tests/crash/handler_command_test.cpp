// The handler's command line beyond the fixed part: the relayed pairs and
// the stack process id when both collect modes are asked for.
#include "crash_run.h"
#include "expectations.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using crash_test::CrashRun;
using Arguments = std::vector<std::string>;

constexpr char kPort[] = "NORVANE_CRASH_HANDLER_TCP_PORT";
constexpr char kClientCertificate[] = "NORVANE_CRASH_HANDLER_CLIENT_CERTIFICATE_PATH";
constexpr char kClientKey[] = "NORVANE_CRASH_HANDLER_CLIENT_CERTIFICATE_KEY_PATH";
constexpr char kServerCertificate[] = "NORVANE_CRASH_HANDLER_SERVER_CERTIFICATE_PATH";

struct RelayCase {
    char const* name;
    std::vector<std::pair<char const*, char const*>> variables;
    Arguments expectedTail;
};

// The case's name, which ctest shows in the test's name.
void PrintTo(RelayCase const& test, std::ostream* out) { *out << test.name; }

class RelayedPairs : public testing::TestWithParam<RelayCase> {};

TEST_P(RelayedPairs, FollowTheFixedPartInTheirOrder) {
    CrashRun run;
    for (auto const& variable : GetParam().variables) run.set(variable.first, std::string(variable.second));
    ASSERT_TRUE(crash_test::handledByLibrary(run.run("access-violation")));
    Arguments expected = crash_test::fixedHandlerArguments(run.logDirectory(), run.hostPid());
    expected.insert(expected.end(), GetParam().expectedTail.begin(), GetParam().expectedTail.end());
    EXPECT_EQ(run.handlerArguments(), expected);
    // The handler took the line: it read the report and summed it up.
    std::string const output = run.hostOutput();
    EXPECT_NE(output.find("exception: EXCEPTION_ACCESS_VIOLATION (code 0xC0000005)"), std::string::npos) << output;
    EXPECT_NE(output.find("(pid " + std::to_string(run.hostPid()) + ","), std::string::npos) << output;
}

INSTANTIATE_TEST_SUITE_P(
    CrashHost, RelayedPairs,
    testing::Values(RelayCase{"setButEmpty",
                              {{kPort, ""}, {kClientCertificate, ""}, {kClientKey, ""}, {kServerCertificate, ""}},
                              {}},
                    RelayCase{"clientPairAndEmptyPort",
                              {{kPort, ""}, {kClientKey, "client.key"}, {kClientCertificate, "client.pem"}},
                              {"-client-certificate", "client.pem", "-client-certificate-key", "client.key"}},
                    RelayCase{"allFour",
                              {{kServerCertificate, "my certs/server.pem"},
                               {kClientKey, "client.key"},
                               {kClientCertificate, "client.pem"},
                               {kPort, "4711"}},
                              {"-tcp-port", "4711", "-client-certificate", "client.pem", "-client-certificate-key",
                               "client.key", "-server-certificate", "my certs/server.pem"}}));

// In-process collection alone puts the stack into the report, so the
// handler gets 0 instead of a process to read (InProcessStack in
// stack_report_test.cpp); with the outside collection asked for too, the
// handler reads the process.
TEST(CrashHost, BothCollectModesHandTheProcessToTheHandler) {
    CrashRun run;
    run.set("NORVANEMINIDUMP1_INPROCESS_COLLECT", std::string("1"));
    run.set("NORVANEMINIDUMP1_OUTOFPROCESS_COLLECT", std::string("1"));
    ASSERT_TRUE(crash_test::handledByLibrary(run.run("access-violation")));
    EXPECT_EQ(run.handlerArguments(), crash_test::fixedHandlerArguments(run.logDirectory(), run.hostPid()));
}

}  // namespace
