// POSIX code only.
#include "signal_codes.h"

#include "minidump_internal/exception_names.h"

#include <signal.h>

namespace norvane_1 {
namespace {

std::uint32_t floatingPointCode(int signalCode) {
    switch (signalCode) {
        case FPE_INTDIV: return 0xC0000094;  // EXCEPTION_INT_DIVIDE_BY_ZERO
        case FPE_INTOVF: return 0xC0000095;  // EXCEPTION_INT_OVERFLOW
        case FPE_FLTDIV: return 0xC000008E;  // EXCEPTION_FLT_DIVIDE_BY_ZERO
        case FPE_FLTOVF: return 0xC0000091;  // EXCEPTION_FLT_OVERFLOW
        case FPE_FLTUND: return 0xC0000093;  // EXCEPTION_FLT_UNDERFLOW
        case FPE_FLTRES: return 0xC000008F;  // EXCEPTION_FLT_INEXACT_RESULT
        case FPE_FLTSUB: return 0xC000008C;  // EXCEPTION_ARRAY_BOUNDS_EXCEEDED
        default: return 0xC0000090;          // EXCEPTION_FLT_INVALID_OPERATION, FPE_FLTINV included
    }
}

}  // namespace

// How far from the stack pointer a frame's first touch of its memory lands:
// a push or a probe just below it, a store into a frame just made anywhere
// above it. Memory that near the stack pointer is the stack's own, and it
// faults only where the stack has run out; a fault farther away is an
// ordinary one.
constexpr std::uint64_t kStackEdgeReach = 64 * 1024;

std::uint32_t exceptionCodeOfCrash(int signalNumber, siginfo_t const* info, std::uint64_t stackPointer) {
    if (info == nullptr) return exceptionCodeOfSignal(signalNumber, 0);
    if (signalNumber == SIGSEGV) {
        auto const address = reinterpret_cast<std::uint64_t>(info->si_addr);
        if (address + kStackEdgeReach >= stackPointer && address <= stackPointer + kStackEdgeReach) return 0xC00000FD;
    }
    return exceptionCodeOfSignal(signalNumber, info->si_code);
}

std::uint32_t exceptionCodeOfSignal(int signalNumber, int signalCode) {
    switch (signalNumber) {
        case SIGSEGV: return 0xC0000005;
        case SIGBUS: return signalCode == BUS_ADRALN ? 0x80000002 : 0xC0000006;
        case SIGFPE: return floatingPointCode(signalCode);
        case SIGILL: return signalCode == ILL_PRVOPC ? 0xC0000096 : 0xC000001D;
        case SIGTRAP: return 0x80000003;
        case SIGABRT: return kAbortExceptionCode;
        default: return 0;
    }
}

}  // namespace norvane_1
