// Which faults are stack overflows. The code of each fault the sample host
// raises is checked in its report (crash_report_test.cpp).
#include "minidump_posix/signal_codes.h"

#include <gtest/gtest.h>

#include <signal.h>

namespace {

// Only a fault at the stack's edge is an overflow: near the stack pointer,
// where a push, a probe or a store into a new frame lands.
TEST(SignalCodes, StackOverflowIsAFaultAtTheStackEdge) {
    std::uint64_t const stackPointer = 0x7ffd00100000;
    struct {
        int signal;
        std::uint64_t address;
        std::uint32_t expected;
    } const cases[] = {
        {SIGSEGV, stackPointer - 8, 0xC00000FD},
        {SIGSEGV, stackPointer - 64 * 1024, 0xC00000FD},
        {SIGSEGV, stackPointer - 64 * 1024 - 1, 0xC0000005},
        {SIGSEGV, stackPointer + 1000, 0xC00000FD},
        {SIGSEGV, stackPointer + 64 * 1024 + 1, 0xC0000005},
        {SIGSEGV, 0, 0xC0000005},
        {SIGBUS, stackPointer - 8, 0xC0000006},
    };
    for (auto const& c : cases) {
        siginfo_t info{};
        info.si_signo = c.signal;
        info.si_code = c.signal == SIGSEGV ? int{SEGV_MAPERR} : int{BUS_ADRERR};
        info.si_addr = reinterpret_cast<void*>(c.address);
        EXPECT_EQ(norvane_1::exceptionCodeOfCrash(c.signal, &info, stackPointer), c.expected) << std::hex << c.address;
    }
}

}  // namespace
