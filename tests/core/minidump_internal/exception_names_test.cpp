// Names of exception codes in a report: the table's edges. The name of each
// code a crash can have is checked in its report (crash_report_test.cpp).
#include "minidump_internal/exception_names.h"

#include <gtest/gtest.h>

namespace {

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
