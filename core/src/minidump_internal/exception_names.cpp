// Portable code only.
#include "exception_names.h"

#include <iterator>

namespace norvane_1 {
namespace {

struct NamedCode {
    std::uint32_t code;
    wchar_t const* name;
};

// 0xC000008C to 0xC0000096 follow each other and are looked up by distance.
constexpr std::uint32_t kFirstConsecutiveCode = 0xC000008C;
constexpr wchar_t const* kConsecutiveNames[] = {
    L"EXCEPTION_ARRAY_BOUNDS_EXCEEDED", L"EXCEPTION_FLT_DENORMAL_OPERAND",  L"EXCEPTION_FLT_DIVIDE_BY_ZERO",
    L"EXCEPTION_FLT_INEXACT_RESULT",    L"EXCEPTION_FLT_INVALID_OPERATION", L"EXCEPTION_FLT_OVERFLOW",
    L"EXCEPTION_FLT_STACK_CHECK",       L"EXCEPTION_FLT_UNDERFLOW",         L"EXCEPTION_INT_DIVIDE_BY_ZERO",
    L"EXCEPTION_INT_OVERFLOW",          L"EXCEPTION_PRIV_INSTRUCTION",
};

constexpr NamedCode kOtherCodes[] = {
    {0xC0000005, L"EXCEPTION_ACCESS_VIOLATION"},
    {0x80000002, L"EXCEPTION_DATATYPE_MISALIGNMENT"},
    {0x80000003, L"EXCEPTION_BREAKPOINT"},
    {0x80000004, L"EXCEPTION_SINGLE_STEP"},
    {0xC0000006, L"EXCEPTION_IN_PAGE_ERROR"},
    {0xC000001D, L"EXCEPTION_ILLEGAL_INSTRUCTION"},
    {0xC0000025, L"EXCEPTION_NONCONTINUABLE_EXCEPTION"},
    {0xC00000FD, L"EXCEPTION_STACK_OVERFLOW"},
    {0xC0000026, L"EXCEPTION_INVALID_DISPOSITION"},
    {0x80000001, L"EXCEPTION_GUARD_PAGE"},
    {0xC0000008, L"EXCEPTION_INVALID_HANDLE"},
    {kAbortExceptionCode, L"ABORT_CALL"},
};

}  // namespace

std::wstring exceptionDescription(std::uint32_t code) {
    std::uint32_t const distance = code - kFirstConsecutiveCode;
    if (code >= kFirstConsecutiveCode && distance < std::size(kConsecutiveNames)) {
        return kConsecutiveNames[distance];
    }
    for (auto const& named : kOtherCodes) {
        if (named.code == code) return named.name;
    }
    return L"EXCEPTION_UNKNOWN";
}

}  // namespace norvane_1
