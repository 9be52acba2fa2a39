// Linux: every crashed process has a task service of its own, so two that
// crash at once each serve their own handler. (On Windows the pipe's one
// name is the same for every process.)
#include "crash_run.h"
#include "expectations.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

TEST(TaskServices, TwoProcessesCrashingAtOnceEachServeTheirOwnHandler) {
    for (int attempt = 0; attempt < 5; ++attempt) {
        crash_test::CrashRun first;
        crash_test::CrashRun second;
        auto firstHost = first.start("call-chain");
        auto secondHost = second.start("call-chain");
        EXPECT_TRUE(crash_test::handledByLibrary(firstHost->wait(std::chrono::seconds(60))));
        EXPECT_TRUE(crash_test::handledByLibrary(secondHost->wait(std::chrono::seconds(60))));
        for (crash_test::CrashRun* run : {&first, &second}) {
            norvane_1::ProblemReportStorage report = run->readReport();
            EXPECT_EQ(report.getCrashedPid(), run->hostPid());
            EXPECT_EQ(report.getStackFramesMap().count(report.getCrashedTid()), 1u)
                << "attempt " << attempt << ": " << run->logFile("crash_info.txt");
        }
    }
}

}  // namespace
