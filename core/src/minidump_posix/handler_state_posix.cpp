// The worker's crash work on Linux: the saved signal becomes the report's
// exception and register context. POSIX code only.
#include "posix_handler_state.h"

#include <norvane_1/crash_handling.h>

#include "minidump_internal/exception_names.h"
#include "saved_registers.h"
#include "signal_codes.h"

#include <new>

namespace norvane_1 {

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
    crash.exception.code = exceptionCodeOfCrash(m_signalNumber, m_hasSignalInfo ? &m_signalInfo : nullptr,
                                                m_registers.ESP);
    crash.exception.description = exceptionDescription(static_cast<std::uint32_t>(crash.exception.code));
    crash.exception.address = m_registers.EIP;
    crash.registers = m_registers;
    return processSavedCrash(crash, "norvane_1::PosixHandlerState::run");
}

HandlerState* createHandlerState() { return new (std::nothrow) PosixHandlerState(); }

}  // namespace norvane_1
