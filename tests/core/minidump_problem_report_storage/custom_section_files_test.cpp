// Custom sections brought into a report from hand-written lists, and the
// memory figure. Registered sections in a finished report are checked in
// tests/crash/report_extras_test.cpp.
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/custom_section_list.h"
#include "test_environment.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;
using norvane_test::ScratchDirectory;

void writeUtf8(fs::path const& file, std::string const& text) { std::ofstream(file, std::ios::binary) << text; }

TEST(CustomSectionFiles, HandWrittenListsArePairedAsTheyFall) {
    ScratchDirectory logs("sections-odd");
    writeUtf8(logs.path() / "a.txt", "first");
    writeUtf8(logs.path() / "b.txt", "second");
    std::string const a = (logs.path() / "a.txt").string();
    std::string const b = (logs.path() / "b.txt").string();
    // The same name twice (the later file wins), then a name without a path.
    writeUtf8(logs.path() / norvane_1::internal::kCustomSectionListName, "Same\n" + a + "\nSame\n" + b + "\nLonely\n");
    norvane_1::ProblemReportStorage report;
    EXPECT_TRUE(report.appendCustomSections(logs.withSeparator().c_str()));
    EXPECT_EQ(report.getSection(L"Same"), L"second");
    EXPECT_EQ(report.getSection(L"Lonely"), L"");
}

TEST(VirtualMemoryFootprint, RoundedToUnitsOfTenThousandKilobytes) {
    struct {
        wchar_t const* value;
        bool known;
        std::uint64_t units;
    } const cases[] = {
        {L"5000K", true, 1}, {L"4999K", true, 0}, {L"1234567K", true, 123}, {L"25000", true, 3}, {L"", false, 0},
    };
    for (auto const& c : cases) {
        norvane_1::ProblemReportStorage report;
        report.setCrashedPid(1);
        report.setSection(L"Process", std::wstring(L"Process Name: x\nVirtual Memory Size: ") + c.value + L"\n");
        std::uint64_t units = 99;
        EXPECT_EQ(report.getVMemFootPrint(units), c.known) << std::wstring(c.value).size();
        EXPECT_EQ(units, c.known ? c.units : 99u);
    }
    std::uint64_t units = 0;
    norvane_1::ProblemReportStorage notANumber;
    notANumber.setCrashedTid(1);
    notANumber.setSection(L"Process", L"Virtual Memory Size: lots\n");
    EXPECT_THROW(notANumber.getVMemFootPrint(units), boost::bad_lexical_cast);
}

}  // namespace
