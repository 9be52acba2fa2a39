// What a finished crash report carries beside the crash: the host's app
// properties, the head of its newest log, its custom sections and, last, the
// creation log of the crash path.
#include "child_process.h"
#include "crash_run.h"
#include "expectations.h"

#include <norvane_1/string_traits.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <regex>

namespace {

namespace fs = std::filesystem;
using crash_test::CrashRun;
using crash_test::wide;

std::vector<std::wstring> sectionOrder(std::string const& reportText) {
    std::vector<std::wstring> names;
    std::regex const head(R"(^\[(.+)\]\r?$)", std::regex::multiline);
    for (std::sregex_iterator it(reportText.begin(), reportText.end(), head), end; it != end; ++it) {
        names.push_back(wide((*it)[1].str()));
    }
    return names;
}

// Free text keeps the line ends of the file it was read from: CR LF where
// the report was written on Windows.
std::wstring withoutCarriageReturns(std::wstring text) {
    text.erase(std::remove(text.begin(), text.end(), L'\r'), text.end());
    return text;
}

void writeLog(fs::path const& file, std::string const& text, std::chrono::hours age) {
    std::ofstream(file, std::ios::binary) << text;
    fs::last_write_time(file, fs::file_time_type::clock::now() - age);
}

// The milestones of the crash path, in the order they are made. The crashed
// thread's line on handing over races with the worker's first lines, so it
// is looked for on its own.
std::string const kHandOverRecord =
    "norvane_1::dumpMiniDump : .* : Exception handling will now continue in worker thread...";
std::vector<std::string> const kCrashPathRecords = {
    "norvane_1::dumpMiniDump : .* : Exception report initialized",
    "norvane_1::dumpMiniDump : .* : Set crash pid, tid",
    "norvane_1::\\w+HandlerState::run : .* : Worker thread took over...",
    "norvane_1::HandlerState::exportCrashInfo : .* : Set exception info, thread ID, pid",
    "norvane_1::HandlerState::exportCrashInfo : .* : Set thread context",
    "norvane_1::HandlerState::exportCrashInfo : .* : Added premortal log",
    "norvane_1::HandlerState::exportCrashInfo : .* : Set failed product info: crash_host; 0",
    "minidump : .* : invoke out-of-proc handling...",
};

TEST(ReportExtras, AFinishedReportCarriesTheHostsDataInItsPlace) {
    CrashRun run;
    fs::create_directories(run.logDirectory());
    writeLog(run.logDirectory() / "older.log", "old line\n", std::chrono::hours(2));
    writeLog(run.logDirectory() / "newer.log", u8"первая строка\n第二行\nno line end", std::chrono::hours(1));
    ASSERT_TRUE(crash_test::handledByLibrary(run.run("custom-sections"))) << run.hostOutput();

    std::string const text = run.logFile("crash_info.txt");
    std::vector<std::wstring> const order = sectionOrder(text);
    auto const at = [&](std::wstring const& name) {
        return std::find(order.begin(), order.end(), name) - order.begin();
    };
    std::wstring const journal = wide(std::string(u8"Журнал 日志"));
    ASSERT_LT(at(L"ClientInfo"), at(L"PremortalLog"));
    EXPECT_LT(at(L"PremortalLog"), at(L"Device Info"));
    EXPECT_LT(at(L"Device Info"), at(journal));
    ASSERT_FALSE(order.empty());
    EXPECT_EQ(order.back(), L"CreationLog");

    norvane_1::ProblemReportStorage report = run.readReport();
    EXPECT_EQ(withoutCarriageReturns(report.getSection(L"PremortalLog")), wide(std::string(u8"первая строка\n第二行")));
    EXPECT_EQ(withoutCarriageReturns(report.getSection(journal)), wide(std::string(u8"Запись: готово\n记录: 完成")));
    EXPECT_EQ(norvane_1::get(crash_test::sectionKeys(report, L"ClientInfo"), L"Answer"), L"42");

    std::vector<std::string> const log = run.creationLog();
    EXPECT_TRUE(crash_test::recordsInOrder(log, kCrashPathRecords));
    EXPECT_EQ(
        std::count_if(log.begin(), log.end(),
                      [](std::string const& line) { return std::regex_match(line, std::regex(kHandOverRecord)); }),
        1);
    std::regex const shape(R"(^\S+ : \d{4}(-\d\d){5}-\d{1,3} : .+$)");
    for (auto const& line : log) EXPECT_TRUE(std::regex_match(line, shape)) << line;
}

TEST(ReportExtras, WithoutTheCreationLogSectionTheLogStillGrows) {
    CrashRun run;
    run.set("NORVANE1_NO_CREATION_LOG", std::string("1"));
    ASSERT_TRUE(crash_test::handledByLibrary(run.run("custom-sections")));
    EXPECT_GT(run.creationLog().size(), 10u);
    std::vector<std::wstring> const order = sectionOrder(run.logFile("crash_info.txt"));
    EXPECT_EQ(std::count(order.begin(), order.end(), L"CreationLog"), 0);
    EXPECT_EQ(std::count(order.begin(), order.end(), L"Device Info"), 1);
}

// Each record is one append of one whole line: two processes writing at once
// lose no line and tear none.
TEST(ReportExtras, TwoProcessesWritingTheCreationLogAtOnce) {
    constexpr int kRecords = 1500;
    CrashRun run;
    fs::create_directories(run.logDirectory());
    run.set("CRASH_HOST_RECORDS", std::to_string(kRecords));
    std::vector<std::unique_ptr<norvane_test::ChildProcess>> writers;
    for (char const* name : {"A", "B"}) {
        run.set("CRASH_HOST_WRITER", std::string(name));
        writers.push_back(run.start("creation-log-writer"));
    }
    for (auto& writer : writers) {
        norvane_test::ChildOutcome const outcome = writer->wait(std::chrono::seconds(120));
        ASSERT_TRUE(outcome.finished && outcome.exited && outcome.exitCode == 0) << norvane_test::describe(outcome);
    }
    std::regex const record(R"(^crash_host::writeCreationLogRecords : \S+ : writer ([AB]) record (\d+)$)");
    std::map<std::string, int> nextOf{{"A", 0}, {"B", 0}};
    for (auto const& line : run.creationLog()) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, record)) << "torn line: " << line;
        EXPECT_EQ(std::stoi(match[2]), nextOf[match[1]]++) << line;
    }
    EXPECT_EQ(nextOf["A"], kRecords);
    EXPECT_EQ(nextOf["B"], kRecords);
}

}  // namespace
