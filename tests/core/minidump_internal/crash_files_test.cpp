// The files beside a report: the creation log and the custom-section list.
// The log's records, their shape and order, are checked in a crash's log
// (report_extras_test.cpp); a hand-written list in
// custom_section_files_test.cpp.
#include <norvane_1/crash_handling.h>

#include "file_text.h"
#include "test_environment.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using norvane_test::ScratchDirectory;

TEST(CreationLog, NothingIsWrittenWithoutADirectory) {
    ScratchDirectory directory("creation-log-missing");
    auto const missing = (directory.path() / "missing" / "").wstring();
    norvane_1::addCreationLogRecord("label", L"text", missing.c_str());
    EXPECT_FALSE(std::filesystem::exists(directory.path() / "missing"));
}

TEST(CustomSections, RegistrationResults) {
    ScratchDirectory directory("custom-sections");
    std::wstring const folder = directory.withSeparator();
    using norvane_1::addCrashReportCustomSection;
    EXPECT_EQ(addCrashReportCustomSection(L"", L"x", nullptr), norvane_1::custom_section_bad_argument);
    EXPECT_EQ(addCrashReportCustomSection(L"A", L"", folder.c_str()), norvane_1::custom_section_bad_argument);
    std::wstring const missing = folder + L"missing" + folder.back();
    EXPECT_EQ(addCrashReportCustomSection(L"A", L"a.txt", missing.c_str()), norvane_1::custom_section_file_error);
    EXPECT_FALSE(std::filesystem::exists(directory.path() / "missing"));

    EXPECT_EQ(addCrashReportCustomSection(L"A", L"a.txt", folder.c_str()), norvane_1::custom_section_added);
    EXPECT_EQ(addCrashReportCustomSection(L"A", L"other.txt", folder.c_str()), norvane_1::custom_section_exists);
    EXPECT_EQ(addCrashReportCustomSection(L"B", L"b.txt", folder.c_str()), norvane_1::custom_section_added);
    EXPECT_EQ(norvane_test::fileLines(directory.path() / "norvane_custom_sections.txt"),
              (std::vector<std::string>{"A", "a.txt", "B", "b.txt"}));
}

}  // namespace
