// POSIX code only.
#include "saved_registers.h"

namespace norvane_1 {

Context registersOf(ucontext_t const& context) {
    greg_t const* r = context.uc_mcontext.gregs;
    Context registers;
    registers.EAX = static_cast<std::uint64_t>(r[REG_RAX]);
    registers.EBX = static_cast<std::uint64_t>(r[REG_RBX]);
    registers.ECX = static_cast<std::uint64_t>(r[REG_RCX]);
    registers.EDX = static_cast<std::uint64_t>(r[REG_RDX]);
    registers.ESI = static_cast<std::uint64_t>(r[REG_RSI]);
    registers.EDI = static_cast<std::uint64_t>(r[REG_RDI]);
    registers.EBP = static_cast<std::uint64_t>(r[REG_RBP]);
    registers.ESP = static_cast<std::uint64_t>(r[REG_RSP]);
    registers.EIP = static_cast<std::uint64_t>(r[REG_RIP]);
    registers.R8 = static_cast<std::uint64_t>(r[REG_R8]);
    registers.R9 = static_cast<std::uint64_t>(r[REG_R9]);
    registers.R10 = static_cast<std::uint64_t>(r[REG_R10]);
    registers.R11 = static_cast<std::uint64_t>(r[REG_R11]);
    registers.R12 = static_cast<std::uint64_t>(r[REG_R12]);
    registers.R13 = static_cast<std::uint64_t>(r[REG_R13]);
    registers.R14 = static_cast<std::uint64_t>(r[REG_R14]);
    registers.R15 = static_cast<std::uint64_t>(r[REG_R15]);
    return registers;
}

}  // namespace norvane_1
