// Signals mapped onto the report's exception codes.
#include "minidump_posix/signal_codes.h"

#include <gtest/gtest.h>

#include <signal.h>

namespace {

TEST(SignalCodes, ReadLikeTheirWindowsCounterparts) {
    struct { int signal; int code; std::uint32_t expected; } const cases[] = {
        {SIGSEGV, SEGV_MAPERR, 0xC0000005}, {SIGSEGV, SI_USER, 0xC0000005},
        {SIGBUS, BUS_ADRALN, 0x80000002},   {SIGBUS, BUS_ADRERR, 0xC0000006},
        {SIGFPE, FPE_INTDIV, 0xC0000094},   {SIGFPE, FPE_INTOVF, 0xC0000095},
        {SIGFPE, FPE_FLTDIV, 0xC000008E},   {SIGFPE, FPE_FLTOVF, 0xC0000091},
        {SIGFPE, FPE_FLTUND, 0xC0000093},   {SIGFPE, FPE_FLTRES, 0xC000008F},
        {SIGFPE, FPE_FLTINV, 0xC0000090},   {SIGILL, ILL_ILLOPC, 0xC000001D},
        {SIGILL, ILL_PRVOPC, 0xC0000096},   {SIGTRAP, TRAP_BRKPT, 0x80000003},
        {SIGABRT, SI_TKILL, 0x412},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(norvane_1::exceptionCodeOfSignal(c.signal, c.code), c.expected)
            << "signal " << c.signal << " code " << c.code;
    }
}

}  // namespace
