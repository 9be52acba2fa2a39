// Names of exception codes in a report.
#include "minidump_internal/exception_names.h"

#include <gtest/gtest.h>

namespace {

TEST(ExceptionNames, TableEdgesAndOwnCodes) {
    struct { std::uint32_t code; wchar_t const* name; } const cases[] = {
        {0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
        {0xC000008B, L"EXCEPTION_UNKNOWN"},  // just before the consecutive run
        {0xC000008C, L"EXCEPTION_ARRAY_BOUNDS_EXCEEDED"},
        {0xC0000094, L"EXCEPTION_INT_DIVIDE_BY_ZERO"},
        {0xC0000096, L"EXCEPTION_PRIV_INSTRUCTION"},
        {0xC0000097, L"EXCEPTION_UNKNOWN"},  // just behind it
        {0x80000003, L"EXCEPTION_BREAKPOINT"},
        {0xC00000FD, L"EXCEPTION_STACK_OVERFLOW"},
        {0x412, L"ABORT_CALL"},
        {0x413, L"EXCEPTION_UNKNOWN"},  // the pure-call code has no name of its own
        {0, L"EXCEPTION_UNKNOWN"},
    };
    for (auto const& c : cases) EXPECT_EQ(norvane_1::exceptionDescription(c.code), c.name) << std::hex << c.code;
}

}  // namespace
