// The worker's crash work on Windows: the saved exception record and context
// become the report's exception and register context. Windows code only.
#include "windows_handler_state.h"

#include "saved_registers.h"

#include <norvane_1/crash_handling.h>

#include <new>

namespace norvane_1 {

void WindowsHandlerState::setExceptionData(EXCEPTION_POINTERS const* pointers) {
    m_exceptionPointers.ExceptionRecord = &m_exceptionRecord;
    m_exceptionPointers.ContextRecord = &m_contextRecord;
    m_exceptionRecord = pointers && pointers->ExceptionRecord ? *pointers->ExceptionRecord : EXCEPTION_RECORD{};
    m_contextRecord = pointers && pointers->ContextRecord ? *pointers->ContextRecord : CONTEXT{};
}

bool WindowsHandlerState::run() {
    SavedCrash crash;
    crash.processId = m_crashedProcessId;
    crash.threadId = m_crashedThreadId;
    crash.exception = describeException(m_exceptionPointers);
    crash.registers = registersOf(m_contextRecord);
    return processSavedCrash(crash, "norvane_1::WindowsHandlerState::run");
}

HandlerState* createHandlerState() { return new (std::nothrow) WindowsHandlerState(); }

}  // namespace norvane_1
