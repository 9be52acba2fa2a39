// What a report takes from files: which product failed ("support.txt"
// beside the modules' installations), custom sections from hand-written
// lists, and the memory figure. Without a support file the product service
// is asked, and registered sections are read, in every crash test's report
// (report_extras_test.cpp).
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/custom_section_list.h"
#include "test_environment.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;
using norvane_1::ProblemReportStorage;
using norvane_test::ScratchDirectory;

void writeUtf8(fs::path const& file, std::string const& text) { std::ofstream(file, std::ios::binary) << text; }

void addModuleAt(ProblemReportStorage& report, fs::path const& file) {
    norvane_1::ModuleInfo module;
    module.FullName = file.wstring();
    report.getModuleInfo().push_back(module);
}

TEST(ProductInfo, SupportFilesOfTheModulesInstallationsInModuleOrder) {
    ScratchDirectory root("product");
    for (char const* installation : {"one", "two"}) fs::create_directories(root.path() / installation / "bin");
    writeUtf8(root.path() / "one" / "support.txt", "Package ID: 1\r\nPackage Contents: First\r\nBuild Number: 11\r\n");
    writeUtf8(root.path() / "two" / "support.txt", "Package ID: 2\nPackage Contents: Second\nBuild Number: 22\n");
    // A support.txt beside a module is not its own: only the directory above counts.
    writeUtf8(root.path() / "two" / "bin" / "support.txt", "Package Contents: Wrong\n");
    ProblemReportStorage report;
    for (int i = 0; i < 10; ++i) addModuleAt(report, root.path() / "one" / "bin" / "a.dll");
    addModuleAt(report, root.path() / "two" / "bin" / "b.dll");
    addModuleAt(report, root.path() / "three" / "bin" / "c.dll");

    EXPECT_EQ(report.detectProductInfo(),
              L"Package ID: 1\r\nPackage Contents: First\r\nBuild Number: 11\r\n"
              L"Package ID: 2\nPackage Contents: Second\nBuild Number: 22\n");
    EXPECT_TRUE(report.updateProductInfo());
    EXPECT_EQ(report.getProductInfo().find(L'\r'), std::wstring::npos);
    EXPECT_EQ(report.getFailedProductName(), L"Second; 22");  // the later value of a key wins
}

TEST(CustomSectionFiles, HandWrittenListsArePairedAsTheyFall) {
    ScratchDirectory logs("sections-odd");
    writeUtf8(logs.path() / "a.txt", "first");
    writeUtf8(logs.path() / "b.txt", "second");
    std::string const a = (logs.path() / "a.txt").string();
    std::string const b = (logs.path() / "b.txt").string();
    // The same name twice (the later file wins), then a name without a path.
    writeUtf8(logs.path() / norvane_1::internal::kCustomSectionListName, "Same\n" + a + "\nSame\n" + b + "\nLonely\n");
    ProblemReportStorage report;
    EXPECT_TRUE(report.appendCustomSections(logs.withSeparator().c_str()));
    EXPECT_EQ(report.getSection(L"Same"), L"second");
    EXPECT_EQ(report.getSection(L"Lonely"), L"");
}

TEST(VirtualMemoryFootprint, RoundedToUnitsOfTenThousandKilobytes) {
    struct {
        wchar_t const* value;
        bool known;
        std::uint64_t units;
    } const cases[] = {{L"5000K", true, 1}, {L"4999K", true, 0}, {L"25000", true, 3}, {L"", false, 0}};
    for (auto const& c : cases) {
        ProblemReportStorage report;
        report.setCrashedPid(1);
        report.setSection(L"Process", std::wstring(L"Process Name: x\nVirtual Memory Size: ") + c.value + L"\n");
        std::uint64_t units = 99;
        EXPECT_EQ(report.getVMemFootPrint(units), c.known) << std::wstring(c.value).size();
        EXPECT_EQ(units, c.known ? c.units : 99u);
    }
    std::uint64_t units = 0;
    ProblemReportStorage notANumber;
    notANumber.setCrashedTid(1);
    notANumber.setSection(L"Process", L"Virtual Memory Size: lots\n");
    EXPECT_THROW(notANumber.getVMemFootPrint(units), boost::bad_lexical_cast);
}

}  // namespace
