// The files beside a report (the creation log, the custom-section list) and
// the names of exception codes in it. The log's records, their shape and
// order, are checked in a crash's log (report_extras_test.cpp); a
// hand-written list in report_enrichment_test.cpp; the name of each code a
// crash can have in its report (crash_report_test.cpp).
#include <norvane_1/crash_handling.h>

#include "file_text.h"
#include "minidump_internal/exception_names.h"
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

// The table's edges.
TEST(ExceptionNames, TableEdgesAndOwnCodes) {
    struct {
        std::uint32_t code;
        wchar_t const* name;
    } const cases[] = {
        {0xC000008B, L"EXCEPTION_UNKNOWN"},  // just before the consecutive run
        {0xC000008C, L"EXCEPTION_ARRAY_BOUNDS_EXCEEDED"},
        {0xC0000096, L"EXCEPTION_PRIV_INSTRUCTION"},
        {0xC0000097, L"EXCEPTION_UNKNOWN"},  // just behind it
        {0x412, L"ABORT_CALL"},
        {0x413, L"EXCEPTION_UNKNOWN"},  // the pure-call code has no name of its own
        {0, L"EXCEPTION_UNKNOWN"},
    };
    for (auto const& c : cases) EXPECT_EQ(norvane_1::exceptionDescription(c.code), c.name) << std::hex << c.code;
}

}  // namespace
