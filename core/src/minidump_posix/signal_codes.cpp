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
