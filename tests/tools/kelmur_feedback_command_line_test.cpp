// The reference handler's command line: what the library writes is taken,
// anything else is refused.
#include "command_line.h"

#include <gtest/gtest.h>

namespace {

using kelmur_feedback::parseCommandLine;
using Arguments = std::vector<std::string>;

Arguments fixedPart(std::string const& stackPid = "4120") {
    return {"-handle-crash",        "-report-system-info",
            "-system-info-file",    "/var/log/my app/system_info.txt",
            "-collect-module-info", "-collect-product-info",
            "-crash-info-file",     "/var/log/my app/crash_info.txt",
            "-minidump-stack",      stackPid,
            "-dump-memory",         "1",
            "-load-module-map",     "0"};
}

kelmur_feedback::CrashCommand const& crash(kelmur_feedback::ParseResult const& parsed) {
    return std::get<kelmur_feedback::CrashCommand>(*parsed.command);
}

Arguments withTail(Arguments arguments, Arguments const& tail) {
    arguments.insert(arguments.end(), tail.begin(), tail.end());
    return arguments;
}

TEST(KelmurFeedbackCommandLine, FixedPartIsReadIntoTheCommand) {
    auto const parsed = parseCommandLine(fixedPart());
    ASSERT_TRUE(parsed.command) << parsed.error;
    EXPECT_EQ(crash(parsed).systemInfoFile, "/var/log/my app/system_info.txt");
    EXPECT_EQ(crash(parsed).crashInfoFile, "/var/log/my app/crash_info.txt");
    EXPECT_EQ(crash(parsed).minidumpStack, 4120u);
    EXPECT_EQ(crash(parsed).dumpMemory, 1u);
    EXPECT_EQ(crash(parsed).loadModuleMap, 0u);
    EXPECT_TRUE(crash(parsed).relayed.empty());
}

struct RelayedCase {
    char const* name;
    Arguments tail;
};

// The case's name, which ctest shows in the test's name.
void PrintTo(RelayedCase const& test, std::ostream* out) { *out << test.name; }

class RelayedSubsets : public testing::TestWithParam<RelayedCase> {};

// Every subset the library can write is taken, each pair kept as written.
TEST_P(RelayedSubsets, AreKeptInOrder) {
    Arguments const tail = GetParam().tail;
    auto const parsed = parseCommandLine(withTail(fixedPart(), tail));
    ASSERT_TRUE(parsed.command) << parsed.error;
    Arguments flattened;
    for (auto const& relayed : crash(parsed).relayed) {
        flattened.push_back(relayed.option);
        flattened.push_back(relayed.value);
    }
    EXPECT_EQ(flattened, tail);
}

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedbackCommandLine, RelayedSubsets,
    testing::Values(
        RelayedCase{"clientPair", {"-client-certificate", "c.pem", "-client-certificate-key", "c key.pem"}},
        RelayedCase{"all", {"-tcp-port", "1", "-client-certificate", "c.pem", "-client-certificate-key", "k.pem",
                            "-server-certificate", "s.pem"}}));

// The on-demand lines, as the library writes them.
TEST(KelmurFeedbackCommandLine, OnDemandLinesAreRead) {
    Arguments collect = {"-report-system-info", "-collect-module-info", "-collect-product-info",
                         "-crash-info-file",    "/tmp/report-7-x.txt",  "-dump-stack=7",
                         "-dump-memory=0"};
    auto parsed = parseCommandLine(collect);
    ASSERT_TRUE(parsed.command) << parsed.error;
    auto const& withStack = std::get<kelmur_feedback::CollectCommand>(*parsed.command);
    EXPECT_EQ(withStack.crashInfoFile, "/tmp/report-7-x.txt");
    EXPECT_EQ(withStack.dumpStack, 7u);

    collect.erase(collect.begin() + 5);
    parsed = parseCommandLine(collect);
    ASSERT_TRUE(parsed.command) << parsed.error;
    EXPECT_EQ(std::get<kelmur_feedback::CollectCommand>(*parsed.command).dumpStack, 0u);

    parsed = parseCommandLine({"-send-crash-report", "/tmp/r.txt", "-send-crash-report", "App UI freeze report"});
    ASSERT_TRUE(parsed.command) << parsed.error;
    EXPECT_EQ(std::get<kelmur_feedback::SendCommand>(*parsed.command).title, "App UI freeze report");

    parsed = parseCommandLine({"-mercy-kill=4120"});
    ASSERT_TRUE(parsed.command) << parsed.error;
    EXPECT_EQ(std::get<kelmur_feedback::MercyKillCommand>(*parsed.command).processId, 4120u);
}

TEST(KelmurFeedbackCommandLine, ExportLinesAreRead) {
    auto parsed = parseCommandLine({"-export-json", "/tmp/crash info.txt"});
    ASSERT_TRUE(parsed.command) << parsed.error;
    EXPECT_EQ(std::get<kelmur_feedback::ExportJsonCommand>(*parsed.command).reportFile, "/tmp/crash info.txt");
    EXPECT_EQ(std::get<kelmur_feedback::ExportJsonCommand>(*parsed.command).jsonFile, "");

    parsed = parseCommandLine({"-export-json", "r.txt", "r.json"});
    ASSERT_TRUE(parsed.command) << parsed.error;
    EXPECT_EQ(std::get<kelmur_feedback::ExportJsonCommand>(*parsed.command).jsonFile, "r.json");

    parsed = parseCommandLine({"-show-report", "/tmp/crash info.txt"});
    ASSERT_TRUE(parsed.command) << parsed.error;
    EXPECT_EQ(std::get<kelmur_feedback::ShowReportCommand>(*parsed.command).reportFile, "/tmp/crash info.txt");
}

TEST(KelmurFeedbackCommandLine, UsageNamesEveryCommand) {
    std::string const usage = kelmur_feedback::usageText();
    for (char const* option :
         {"-handle-crash", "-report-system-info", "-send-crash-report", "-mercy-kill", "-export-json", "-show-report"}) {
        EXPECT_NE(usage.find(option), std::string::npos) << option;
    }
}

struct RefusedCase {
    char const* name;
    Arguments arguments;
    char const* errorMentions;
};

void PrintTo(RefusedCase const& test, std::ostream* out) { *out << test.name; }

class RefusedCommandLines : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedCommandLines, SayWhy) {
    auto const parsed = parseCommandLine(GetParam().arguments);
    EXPECT_FALSE(parsed.command);
    EXPECT_NE(parsed.error.find(GetParam().errorMentions), std::string::npos) << parsed.error;
}

Arguments replaced(std::size_t index, std::string const& value) {
    Arguments arguments = fixedPart();
    arguments[index] = value;
    return arguments;
}

Arguments truncated(std::size_t count) {
    Arguments arguments = fixedPart();
    arguments.resize(count);
    return arguments;
}

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedbackCommandLine, RefusedCommandLines,
    testing::Values(
        RefusedCase{"nothing", {}, "expected -handle-crash"},
        RefusedCase{"flagsSwapped", replaced(4, "-collect-product-info"), "expected -collect-module-info"},
        RefusedCase{"valueMissingAtEnd", truncated(13), "-load-module-map needs a value"},
        RefusedCase{"negativeNumber", replaced(9, "-1"), "decimal"},
        RefusedCase{"numberBeyond32Bits", replaced(9, "4294967296"), "decimal"},
        RefusedCase{"portTooHigh", withTail(fixedPart(), {"-tcp-port", "65536"}), "port number"},
        RefusedCase{"pairValueMissing", withTail(fixedPart(), {"-server-certificate"}), "needs a value"},
        RefusedCase{"pairsOutOfOrder",
                    withTail(fixedPart(), {"-server-certificate", "s.pem", "-tcp-port", "4711"}),
                    "unexpected argument 17, found '-tcp-port'"},
        RefusedCase{"unknownOption", withTail(fixedPart(), {"-verbose"}), "unexpected argument 15"},
        RefusedCase{"collectWithoutMemory",
                    {"-report-system-info", "-collect-module-info", "-collect-product-info", "-crash-info-file",
                     "r.txt"},
                    "expected -dump-memory="},
        RefusedCase{"collectStackNotANumber",
                    {"-report-system-info", "-collect-module-info", "-collect-product-info", "-crash-info-file",
                     "r.txt", "-dump-stack=me", "-dump-memory=0"},
                    "decimal"},
        RefusedCase{"sendWithoutTitle", {"-send-crash-report", "r.txt"}, "expected -send-crash-report"},
        RefusedCase{"mercyKillOfZero", {"-mercy-kill=0"}, "other than 0"},
        RefusedCase{"mercyKillApart", {"-mercy-kill", "12"}, "expected -mercy-kill=<number>"},
        RefusedCase{"exportWithoutReport", {"-export-json"}, "expected a report file"},
        RefusedCase{"exportIntoAnOption", {"-export-json", "r.txt", "-o"}, "not an option"},
        RefusedCase{"showWithExtra", {"-show-report", "r.txt", "x"}, "unexpected argument 3"}));

}  // namespace
