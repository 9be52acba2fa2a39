// The worker's crash work on Windows: the saved exception record and context
// become the report's exception and register context. Windows code only.
#include "windows_handler_state.h"

#include <norvane_1/crash_handling.h>

#include <new>

namespace norvane_1 {
namespace {

// The order of Context's fields, not the order CONTEXT keeps them in.
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

}  // namespace

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
