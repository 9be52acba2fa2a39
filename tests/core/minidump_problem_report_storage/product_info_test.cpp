// Which product failed: "support.txt" beside the modules' installations.
// Without one the product service is asked: every crash test's report names
// the sample host's product that way (report_extras_test.cpp).
#include <norvane_1/problem_report_storage.h>

#include "test_environment.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using norvane_1::ModuleInfo;
using norvane_test::ScratchDirectory;

ModuleInfo moduleAt(std::filesystem::path const& file) {
    ModuleInfo module;
    module.FullName = file.wstring();
    return module;
}

void writeSupport(std::filesystem::path const& installation, std::string const& contents) {
    std::filesystem::create_directories(installation / "bin");
    std::ofstream(installation / "support.txt", std::ios::binary) << contents;
}

TEST(ProductInfo, SupportFilesOfTheModulesInstallationsInModuleOrder) {
    ScratchDirectory root("product");
    writeSupport(root.path() / "one", "Package ID: 1\r\nPackage Contents: First\r\nBuild Number: 11\r\n");
    writeSupport(root.path() / "two", "Package ID: 2\nPackage Contents: Second\nBuild Number: 22\n");
    // A support.txt beside a module is not its own: only the directory above counts.
    std::ofstream(root.path() / "two" / "bin" / "support.txt") << "Package Contents: Wrong\n";
    norvane_1::ProblemReportStorage report;
    for (int i = 0; i < 10; ++i) report.getModuleInfo().push_back(moduleAt(root.path() / "one" / "bin" / "a.dll"));
    report.getModuleInfo().push_back(moduleAt(root.path() / "two" / "bin" / "b.dll"));
    report.getModuleInfo().push_back(moduleAt(root.path() / "three" / "bin" / "c.dll"));

    std::wstring const text = report.detectProductInfo();
    EXPECT_EQ(text,
              L"Package ID: 1\r\nPackage Contents: First\r\nBuild Number: 11\r\n"
              L"Package ID: 2\nPackage Contents: Second\nBuild Number: 22\n");
    EXPECT_TRUE(report.updateProductInfo());
    EXPECT_EQ(report.getProductInfo().find(L'\r'), std::wstring::npos);
    EXPECT_EQ(report.getFailedProductName(), L"Second; 22");  // the later value of a key wins
}

}  // namespace
