// Signals mapped onto the report's exception codes: those no crash of the
// sample host raises (each of its faults is checked in its report,
// crash_report_test.cpp).
#include "minidump_posix/signal_codes.h"

#include <gtest/gtest.h>

#include <signal.h>

namespace {

TEST(SignalCodes, ReadLikeTheirWindowsCounterparts) {
    struct { int signal; int code; std::uint32_t expected; } const cases[] = {
        {SIGSEGV, SI_USER, 0xC0000005},   {SIGBUS, BUS_ADRALN, 0x80000002}, {SIGBUS, BUS_ADRERR, 0xC0000006},
        {SIGFPE, FPE_FLTDIV, 0xC000008E}, {SIGILL, ILL_PRVOPC, 0xC0000096},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(norvane_1::exceptionCodeOfSignal(c.signal, c.code), c.expected)
            << "signal " << c.signal << " code " << c.code;
    }
}

// Only a fault at the stack's edge is an overflow: near the stack pointer,
// where a push, a probe or a store into a new frame lands.
TEST(SignalCodes, StackOverflowIsAFaultAtTheStackEdge) {
    std::uint64_t const stackPointer = 0x7ffd00100000;
    struct { int signal; std::uint64_t address; std::uint32_t expected; } const cases[] = {
        {SIGSEGV, stackPointer - 8, 0xC00000FD},          {SIGSEGV, stackPointer, 0xC00000FD},
        {SIGSEGV, stackPointer - 64 * 1024, 0xC00000FD},  {SIGSEGV, stackPointer - 64 * 1024 - 1, 0xC0000005},
        {SIGSEGV, stackPointer + 1000, 0xC00000FD},       {SIGSEGV, stackPointer + 64 * 1024 + 1, 0xC0000005},
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
