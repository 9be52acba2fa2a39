// The reference handler's command line: what the library writes is taken,
// anything else is refused. The fixed part, the relayed pairs and the
// on-demand lines as the library writes them are taken by the tool in the
// crash tests (handler_command_test.cpp, on_demand_test.cpp), -show-report
// in check_stack_chain.sh.
#include "command_line.h"

#include <gtest/gtest.h>

namespace {

using kelmur_feedback::parseCommandLine;
using Arguments = std::vector<std::string>;

Arguments fixedPart() {
    return {"-handle-crash",        "-report-system-info",
            "-system-info-file",    "/var/log/my app/system_info.txt",
            "-collect-module-info", "-collect-product-info",
            "-crash-info-file",     "/var/log/my app/crash_info.txt",
            "-minidump-stack",      "4120",
            "-dump-memory",         "1",
            "-load-module-map",     "0"};
}

Arguments withTail(Arguments arguments, Arguments const& tail) {
    arguments.insert(arguments.end(), tail.begin(), tail.end());
    return arguments;
}

// The line with a report alone is taken in bad_input_test.cpp (the tool
// ends for the missing report, not for the line).
TEST(KelmurFeedbackCommandLine, ExportLineTakesTheReportAndTheJsonFile) {
    auto const parsed = parseCommandLine({"-export-json", "/tmp/crash info.txt", "r.json"});
    ASSERT_TRUE(parsed.command) << parsed.error;
    auto const& command = std::get<kelmur_feedback::ExportJsonCommand>(*parsed.command);
    EXPECT_EQ(command.reportFile, "/tmp/crash info.txt");
    EXPECT_EQ(command.jsonFile, "r.json");
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

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedbackCommandLine, RefusedCommandLines,
    testing::Values(RefusedCase{"nothing", {}, "expected -handle-crash"},
                    RefusedCase{"flagsSwapped", replaced(4, "-collect-product-info"), "expected -collect-module-info"},
                    RefusedCase{"negativeNumber", replaced(9, "-1"), "decimal"},
                    RefusedCase{"numberBeyond32Bits", replaced(9, "4294967296"), "decimal"},
                    RefusedCase{"portTooHigh", withTail(fixedPart(), {"-tcp-port", "65536"}), "port number"},
                    RefusedCase{"pairValueMissing", withTail(fixedPart(), {"-server-certificate"}), "needs a value"},
                    RefusedCase{"pairsOutOfOrder",
                                withTail(fixedPart(), {"-server-certificate", "s.pem", "-tcp-port", "4711"}),
                                "unexpected argument 17, found '-tcp-port'"},
                    RefusedCase{"collectWithoutMemory",
                                {"-report-system-info", "-collect-module-info", "-collect-product-info",
                                 "-crash-info-file", "r.txt"},
                                "expected -dump-memory="},
                    RefusedCase{"sendWithoutTitle", {"-send-crash-report", "r.txt"}, "expected -send-crash-report"},
                    RefusedCase{"mercyKillOfZero", {"-mercy-kill=0"}, "other than 0"},
                    RefusedCase{"mercyKillApart", {"-mercy-kill", "12"}, "expected -mercy-kill=<number>"},
                    RefusedCase{"exportWithoutReport", {"-export-json"}, "expected a report file"},
                    RefusedCase{"exportIntoAnOption", {"-export-json", "r.txt", "-o"}, "not an option"},
                    RefusedCase{"showWithExtra", {"-show-report", "r.txt", "x"}, "unexpected argument 3"}));

}  // namespace
