// Signals in the terms of the report's exception codes, so that a report
// from Linux reads like one from Windows. POSIX code only.
#pragma once

#include <cstdint>

namespace norvane_1 {

// SIGSEGV 0xC0000005; SIGBUS 0x80000002 (misaligned) or 0xC0000006; SIGFPE
// by its si_code; SIGILL 0xC000001D (0xC0000096 for a privileged opcode);
// SIGTRAP 0x80000003; SIGABRT 0x412, the library's code for abort.
std::uint32_t exceptionCodeOfSignal(int signalNumber, int signalCode);

}  // namespace norvane_1
