// The files beside a report: the creation log and the custom-section list.
#include <norvane_1/crash_handling.h>

#include "file_text.h"
#include "test_environment.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <vector>

namespace {

using norvane_test::ScratchDirectory;

TEST(CreationLog, OneLinePerRecordInOrder) {
    ScratchDirectory directory("creation-log");
    std::wstring const withoutSeparator = directory.path().wstring();
    norvane_1::addCreationLogRecord("first::label", L"one", withoutSeparator.c_str());
    norvane_1::addCreationLogRecord("second", L"two words", directory.withSeparator().c_str());
    norvane_1::addCreationLogRecord(nullptr, L"no label", withoutSeparator.c_str());
    norvane_1::addCreationLogRecord("no text", L"", withoutSeparator.c_str());
    auto const lines = norvane_test::fileLines(directory.path() / "norvane_creation_log.txt");
    ASSERT_EQ(lines.size(), 2u);
    std::regex const shape(R"(^(\S+) : \d{4}-\d\d-\d\d-\d\d-\d\d-\d\d-\d{1,3} : (.*)$)");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(lines[0], match, shape)) << lines[0];
    EXPECT_EQ(match[1], "first::label");
    EXPECT_EQ(match[2], "one");
    ASSERT_TRUE(std::regex_match(lines[1], match, shape)) << lines[1];
    EXPECT_EQ(match[2], "two words");
}

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

TEST(CustomSections, HandWrittenListIsReadPairByPair) {
    ScratchDirectory directory("custom-sections-odd");
    {
        std::ofstream list(directory.path() / "norvane_custom_sections.txt");
        list << "A\n\nB\nb.txt\n";  // an empty line shifts the pairing: (A, ""), (B, b.txt)
    }
    std::wstring const folder = directory.withSeparator();
    EXPECT_EQ(norvane_1::addCrashReportCustomSection(L"B", L"x", folder.c_str()), norvane_1::custom_section_exists);
    EXPECT_EQ(norvane_1::addCrashReportCustomSection(L"A", L"a.txt", folder.c_str()), norvane_1::custom_section_added);
}

}  // namespace
