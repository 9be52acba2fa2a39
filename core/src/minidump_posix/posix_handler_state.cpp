// The worker's crash work on Linux: the saved signal becomes the report's
// exception and register context. POSIX code only.
#include "posix_handler_state.h"

#include <norvane_1/crash_handling.h>

#include "minidump_internal/exception_names.h"
#include "signal_codes.h"

#include <ucontext.h>

#include <new>

namespace norvane_1 {
namespace {

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

}  // namespace

void PosixHandlerState::setExceptionData(ExceptionData const* data) {
    m_signalNumber = data ? data->signalNumber : 0;
    m_hasSignalInfo = data && data->signalInfo;
    if (m_hasSignalInfo) m_signalInfo = *data->signalInfo;
    m_registers = data && data->userContext ? registersOf(*static_cast<ucontext_t const*>(data->userContext))
                                            : Context();
}

bool PosixHandlerState::run() {
    SavedCrash crash;
    crash.processId = m_crashedProcessId;
    crash.threadId = m_crashedThreadId;
    crash.exception.code = exceptionCodeOfSignal(m_signalNumber, m_hasSignalInfo ? m_signalInfo.si_code : 0);
    crash.exception.description = exceptionDescription(static_cast<std::uint32_t>(crash.exception.code));
    crash.exception.address = m_registers.EIP;
    crash.registers = m_registers;
    return processSavedCrash(crash, "norvane_1::PosixHandlerState::run");
}

HandlerState* createHandlerState() { return new (std::nothrow) PosixHandlerState(); }

}  // namespace norvane_1
