// The feedback tool given what it can't carry out: a clear message and a
// non-zero exit, never a crash or a hang.
#include "child_process.h"

#include <gtest/gtest.h>

#include <filesystem>

#ifdef _WIN32
#include <process.h>
#define currentPid _getpid
#else
#include <unistd.h>
#define currentPid getpid
#endif

namespace {

struct BadInputCase {
    char const* name;
    std::vector<std::string> arguments;
    std::uint32_t exitCode;
};

void PrintTo(BadInputCase const& test, std::ostream* out) { *out << test.name; }

class ToolBadInput : public testing::TestWithParam<BadInputCase> {};

TEST_P(ToolBadInput, EndsWithAReason) {
    norvane_test::ChildOptions options;
    options.program = norvane_test::programBesideThisOne("kelmur-feedback");
    options.arguments = GetParam().arguments;
    options.environment = {{"KELMUR_FEEDBACK_RECORD", std::nullopt}};
    auto const outcome = norvane_test::ChildProcess(options).wait(std::chrono::seconds(30));
    ASSERT_TRUE(outcome.finished && outcome.exited) << norvane_test::describe(outcome);
    EXPECT_EQ(outcome.exitCode, GetParam().exitCode);
}

std::vector<std::string> collectLine(std::string const& report, std::string const& stack) {
    std::vector<std::string> line = {"-report-system-info", "-collect-module-info", "-collect-product-info",
                                     "-crash-info-file", report};
    if (!stack.empty()) line.push_back("-dump-stack=" + stack);
    line.push_back("-dump-memory=0");
    return line;
}

std::string missingReportOfThisProcess() {
    return (std::filesystem::temp_directory_path() / ("no-dir-" + std::to_string(currentPid())) /
            ("report-" + std::to_string(currentPid()) + "-x.txt"))
        .u8string();
}

constexpr char kNoSuchPid[] = "4000000000";

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedback, ToolBadInput,
    testing::Values(BadInputCase{"unknownOption", {"-frobnicate"}, 2},
                    BadInputCase{"collectOfNoProcess", collectLine("report-1-x.txt", kNoSuchPid), 1},
                    BadInputCase{"collectWithoutAProcess", collectLine("r.txt", ""), 1},
                    BadInputCase{"collectOfAMissingReport", collectLine(missingReportOfThisProcess(), ""), 1},
                    BadInputCase{"mercyKillOfNoProcess", {std::string("-mercy-kill=") + kNoSuchPid}, 1},
                    // -show-report reads its file the same way; check_stack_chain.sh has it refuse a damaged one.
                    BadInputCase{"exportOfAMissingReport", {"-export-json", missingReportOfThisProcess()}, 1}));

}  // namespace
