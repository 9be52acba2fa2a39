// Signals in the terms of the report's exception codes, so that a report
// from Linux reads like one from Windows. POSIX code only.
#pragma once

#include <signal.h>

#include <cstdint>

namespace norvane_1 {

// SIGSEGV 0xC0000005; SIGBUS 0x80000002 (misaligned) or 0xC0000006; SIGFPE
// by its si_code; SIGILL 0xC000001D (0xC0000096 for a privileged opcode);
// SIGTRAP 0x80000003; SIGABRT 0x412, the library's code for abort.
std::uint32_t exceptionCodeOfSignal(int signalNumber, int signalCode);

// The same, and 0xC00000FD (EXCEPTION_STACK_OVERFLOW) for a SIGSEGV whose
// address lies at most 64 KiB from the stack pointer: the stack ran into
// its guard area, or past its limit. `info` may be null.
std::uint32_t exceptionCodeOfCrash(int signalNumber, siginfo_t const* info, std::uint64_t stackPointer);

}  // namespace norvane_1
