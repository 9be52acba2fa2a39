// Windows code only.
#include "saved_registers.h"

namespace norvane_1 {

Context registersOf(CONTEXT const& context) {
    Context registers;
    registers.EAX = context.Rax;
    registers.EBX = context.Rbx;
    registers.ECX = context.Rcx;
    registers.EDX = context.Rdx;
    registers.ESI = context.Rsi;
    registers.EDI = context.Rdi;
    registers.EBP = context.Rbp;
    registers.ESP = context.Rsp;
    registers.EIP = context.Rip;
    registers.R8 = context.R8;
    registers.R9 = context.R9;
    registers.R10 = context.R10;
    registers.R11 = context.R11;
    registers.R12 = context.R12;
    registers.R13 = context.R13;
    registers.R14 = context.R14;
    registers.R15 = context.R15;
    return registers;
}

}  // namespace norvane_1
