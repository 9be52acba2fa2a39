// A report as JSON: everything in it comes back through JSON text to the
// same report text, with structure where the report has it; JSON that
// describes no report is refused with a reason.
#include "report_json.h"
#include "file_text.h"
#include "sample_reports.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using kelmur_feedback::Json;
using norvane_1::ProblemReportStorage;

struct Expected {
    char const* pointer;
    Json value;
};

struct RoundTripCase {
    char const* name;
    std::function<ProblemReportStorage()> make;
    std::vector<Expected> members;
};

void PrintTo(RoundTripCase const& test, std::ostream* out) { *out << test.name; }

class ReportJson : public testing::TestWithParam<RoundTripCase> {};

std::string dataFile(char const* name) { return std::string(NORVANE_TEST_DATA_DIR) + "/reports/" + name; }

ProblemReportStorage readFrom(char const* name) {
    ProblemReportStorage report;
    report.fromString(norvane_test::fromUtf8(norvane_test::fileText(dataFile(name))));
    return report;
}

// An assertion, an uncaught exception, and sections the JSON has no names
// for: key lines, a text with a section head inside, a raw stack under its
// older name.
ProblemReportStorage makeAssertionReport() {
    ProblemReportStorage report;
    report.setAssertion({L"size <= capacity", L"src/my buffer.cpp", 212});
    report.setCrashedPid(77);
    report.setSection(L"UncaughtException", L"Type: std::length_error\nWhat: too&nbsp;long<br>by&nbsp;3\n");
    report.setSection(L"Zeta", L"b: 2\na: 1");
    report.setSection(L"Tool Log", L"[INFO] started\n[Nested]\nmore\n");
    report.setSection(L"Stack.0x00000010", L"0x10: 0x20\n");
    return report;
}

// An on-demand report with empty values and a module list with a gap.
ProblemReportStorage makeProcessDumpReport() {
    ProblemReportStorage report;
    report.setProcessDump({L"C:\\Program Files\\App\\app.exe", L"app.exe --safe  mode", L""});
    norvane_1::ModuleInfo module;
    module.Base = 0x1000;
    module.FullName = L"a b.dll";
    report.getModuleInfo().push_back(module);
    report.setSection(L"Module002", L"Base: 0x0000000000002000\n");
    report.setSection(L"System", L"OS: Debian GNU/Linux 12 (bookworm)\nCPU: 2 cores\n");
    return report;
}

TEST_P(ReportJson, ComesBackToTheSameText) {
    RoundTripCase const& test = GetParam();
    ProblemReportStorage report = test.make();
    // The text of the report as the library reads it: the same as its own for
    // a report read from a file; a report made in code may lose line feeds
    // around its sections' texts, which the reader drops.
    ProblemReportStorage read;
    read.fromString(report.toString());
    std::wstring const original = read.toString();

    Json const json = Json::parse(kelmur_feedback::reportToJson(report).dump());
    for (auto const& member : test.members) {
        EXPECT_EQ(json.value(Json::json_pointer(member.pointer), Json()), member.value) << member.pointer;
    }
    EXPECT_EQ(norvane_test::toUtf8(kelmur_feedback::reportFromJson(json).toString()), norvane_test::toUtf8(original));
}

INSTANTIATE_TEST_SUITE_P(KelmurFeedback, ReportJson,
                         testing::Values(RoundTripCase{"rich",
                                                       norvane_test::makeRichReport,
                                                       {{"/problem/kind", "Exception"},
                                                        {"/problem/values/CrashedPID", 4120},
                                                        {"/problem/values/Module", "sample tool.dll"},
                                                        {"/products/Package Contents", "Sample Tool"},
                                                        {"/clientInfo/Zoom", "1.25"},
                                                        {"/modules/1/FullName", u8"C:\\テスト\\модуль.dll"},
                                                        {"/contexts/0/thread", 6632},
                                                        {"/contexts/0/registers/R15", "0xffffffffffffffff"},
                                                        {"/stacks/0/kind", "clean"},
                                                        {"/stacks/0/frames/0/kind", "fault"},
                                                        {"/stacks/1/slots/1/returnAddress", "0x00007ff6a1b20004"},
                                                        {"/logs/premortal/1", u8"вторая строка"},
                                                        {"/sections/Aardvark", "first custom section"},
                                                        {"/sections/Device Info/GPU", u8"中文 😀"}}},
                                         // A crash's report as the tool completed it.
                                         RoundTripCase{"crashHost",
                                                       [] { return readFrom("crash_host_report.txt"); },
                                                       {{"/stacks/0/frames/3/module", "libc.so.6"},
                                                        {"/logs/creation/2",
                                                         "norvane_1::startExecuteMinidumpTaskthread : "
                                                         "2026-11-23-17-43-31-994 : EMT Service started!"}}},
                                         RoundTripCase{"large", [] { return norvane_test::makeLargeReport(); }, {}},
                                         RoundTripCase{
                                             "assertion",
                                             makeAssertionReport,
                                             {{"/problem/values/Line", 212},
                                              {"/uncaughtException/What", "too long\nby 3"},
                                              {"/sections/Zeta/b", "2"},
                                              {"/sections/Tool Log", "[INFO] started"},  // a head inside is a head
                                              {"/sections/Nested", "more"},
                                              {"/sections/Stack.0x00000010/0x10", "0x20"}}},
                                         RoundTripCase{"processDump",
                                                       makeProcessDumpReport,
                                                       {{"/problem/values/Command line", "app.exe --safe  mode"},
                                                        {"/modules/0/FullName", "a b.dll"},
                                                        {"/sections/Module002/Base", "0x0000000000002000"}}}));

struct RefusedCase {
    char const* name;
    char const* json;
    char const* errorMentions;
};

void PrintTo(RefusedCase const& test, std::ostream* out) { *out << test.name; }

class ReportJsonRefused : public testing::TestWithParam<RefusedCase> {};

TEST_P(ReportJsonRefused, SaysWhy) {
    try {
        kelmur_feedback::reportFromJson(Json::parse(GetParam().json));
        ADD_FAILURE() << "taken";
    } catch (kelmur_feedback::ReportJsonError const& error) {
        EXPECT_NE(std::string(error.what()).find(GetParam().errorMentions), std::string::npos) << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(
    KelmurFeedback, ReportJsonRefused,
    testing::Values(
        RefusedCase{"notAnObject", "[]", "a JSON object"},
        RefusedCase{"unknownMember", R"({"module": []})", "unknown member \"module\""},
        RefusedCase{"problemOfNoKind", R"({"problem": {"kind": "Crash", "values": {}}})", "unknown problem kind"},
        RefusedCase{"pidNotADecimal", R"({"problem": {"kind": "Exception", "values": {"CrashedPID": "x1"}}})",
                    "don't read"},
        RefusedCase{"threadBeyond32Bits", R"({"contexts": [{"thread": 4294967296, "registers": {}}]})", "32-bit"},
        RefusedCase{"frameOfNoKind", R"({"stacks": [{"thread": 1, "kind": "clean", "frames": [{"kind": "x"}]}]})",
                    "unknown frame kind"},
        RefusedCase{"sectionTwice", R"({"process": "a", "sections": {"Process": "b"}})", "given twice"},
        RefusedCase{"valueNotText", R"({"dump": {"Path": [1]}})", "neither text nor a whole number"}));

}  // namespace
