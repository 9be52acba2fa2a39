#include "context_windows.h"

namespace kelmur_feedback {

norvane_1::Context contextOf(CONTEXT const& c) {
    norvane_1::Context context;
    context.EAX = c.Rax, context.EBX = c.Rbx, context.ECX = c.Rcx, context.EDX = c.Rdx;
    context.ESI = c.Rsi, context.EDI = c.Rdi, context.EBP = c.Rbp, context.ESP = c.Rsp;
    context.EIP = c.Rip;
    context.R8 = c.R8, context.R9 = c.R9, context.R10 = c.R10, context.R11 = c.R11;
    context.R12 = c.R12, context.R13 = c.R13, context.R14 = c.R14, context.R15 = c.R15;
    return context;
}

CONTEXT systemContextOf(norvane_1::Context const& c) {
    CONTEXT context{};
    context.ContextFlags = CONTEXT_FULL;
    context.Rax = c.EAX, context.Rbx = c.EBX, context.Rcx = c.ECX, context.Rdx = c.EDX;
    context.Rsi = c.ESI, context.Rdi = c.EDI, context.Rbp = c.EBP, context.Rsp = c.ESP;
    context.Rip = c.EIP;
    context.R8 = c.R8, context.R9 = c.R9, context.R10 = c.R10, context.R11 = c.R11;
    context.R12 = c.R12, context.R13 = c.R13, context.R14 = c.R14, context.R15 = c.R15;
    return context;
}

}  // namespace kelmur_feedback
