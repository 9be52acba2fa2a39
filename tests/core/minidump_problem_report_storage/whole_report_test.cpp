// The whole report: what a round trip keeps, and the text as the contract
// between the two platforms' builds.
#include <norvane_1/problem_report_storage.h>

#include "file_text.h"
#include "sample_reports.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

namespace {

using norvane_1::ProblemReportStorage;

std::string dataFile(char const* name) { return std::string(NORVANE_TEST_DATA_DIR) + "/reports/" + name; }

TEST(WholeReport, DamagedNumberStopsTheReaderButKeepsTheSections) {
    ProblemReportStorage report;
    EXPECT_THROW(report.fromString(L"[Exception]\nCode: 0x5\nDescription: x\nCrashedTID: 12a\n\n[Other]\nkept\n"),
                 boost::bad_lexical_cast);
    EXPECT_EQ(report.getSection(L"Other"), L"kept");
    EXPECT_EQ(report.getException().code, 5u);
}

// The same report, built in code, must come out of every platform's build as
// the same UTF-8 bytes: the committed file is that text.
TEST(WholeReport, TextIsTheSameOnEveryPlatform) {
    auto report = norvane_test::makeRichReport();
    std::string const expected = norvane_test::fileText(dataFile("rich_report.txt"));
    ASSERT_FALSE(expected.empty()) << "missing " << dataFile("rich_report.txt");
    EXPECT_EQ(norvane_test::toUtf8(report.toString()), expected);
}

// The committed text, and the same as a Windows build writes it to disk
// (UTF-8, CR LF), read back on every platform into the records it was made
// from. Free text loses its line ends at both ends on the way; after that
// the text is a fixed point, with unknown sections and client info as text.
TEST(WholeReport, GoldenFilesReadBackIntoTheRecords) {
    auto reference = norvane_test::makeRichReport();
    for (char const* name : {"rich_report.txt", "rich_report_crlf.txt"}) {
        SCOPED_TRACE(name);
        bool const crlf = std::string(name) == "rich_report_crlf.txt";
        std::string const bytes = norvane_test::fileText(dataFile(name));
        ASSERT_FALSE(bytes.empty());
        ProblemReportStorage read;
        EXPECT_TRUE(read.fromString(norvane_test::fromUtf8(bytes)));
        EXPECT_EQ(read.getModuleInfo(), reference.getModuleInfo());
        EXPECT_EQ(read.getStackMap(), reference.getStackMap());
        EXPECT_EQ(read.getContextMap()[0x19e8].R15, 0xffffffffffffffffULL);
        EXPECT_EQ(read.getException().description, reference.getException().description);
        std::wstring const deviceInfo = reference.getSection(L"Device Info");
        EXPECT_EQ(read.getSection(L"Device Info"), crlf ? norvane_test::withCrLf(deviceInfo) : deviceInfo);
        // Clean frames keep a CR in their module column: the one documented difference.
        EXPECT_EQ(read.getStackFramesMap()[0x19e8][0].module, crlf ? L"sample tool.dll\r" : L"sample tool.dll");
        if (crlf) continue;
        EXPECT_EQ(read.getException().code, 0xC0000005u);
        EXPECT_EQ(read.getException().module, L"sample tool.dll");
        EXPECT_EQ(read.getCrashedTid(), 0x19e8u);
        EXPECT_EQ(read.getProcBitness(), 0);
        EXPECT_EQ(std::wstring(read.getReportPath()), L"C:\\logs\\crash 1\\");
        EXPECT_EQ(read.getFailedProductName(), L"Sample Tool; 612345");
        EXPECT_EQ(read.getProductInfo(), L"Package ID: N-A\nPackage Contents: Sample Tool\nBuild Number: 612345");
        EXPECT_EQ(read.getDumpValue(L"Path"), L"C:\\logs\\crash 1\\crash.dmp");
        std::wstring const again = read.toString();
        ProblemReportStorage reread;
        reread.fromString(again);
        EXPECT_EQ(reread.toString(), again);
    }
}

}  // namespace
