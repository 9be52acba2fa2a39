// The report's names of exception codes. Portable code only.
#pragma once

#include <cstdint>
#include <string>

namespace norvane_1 {

// The library's own codes for abort and for a pure-virtual call.
constexpr std::uint32_t kAbortExceptionCode = 0x412;
constexpr std::uint32_t kPureCallExceptionCode = 0x413;

// "EXCEPTION_ACCESS_VIOLATION" and so on; "EXCEPTION_UNKNOWN" for a code
// without a name (0x413 included), "ABORT_CALL" for 0x412.
std::wstring exceptionDescription(std::uint32_t code);

}  // namespace norvane_1
