// Unwinding with the system's unwinder, on Windows. Windows code only.
//
// RtlLookupFunctionEntry finds a function's unwind information in its
// module's exception directory, and RtlVirtualUnwind applies it to a
// register context. RtlVirtualUnwind reads the stack wherever the context
// and the unwind codes point; on a damaged stack that can be anywhere. So
// each of its calls runs under a guard: a vectored exception handler that,
// when the walking thread faults while the guard is armed, resumes that
// thread where the guard was set, as the return of RtlCaptureContext, which
// then reports the fault instead of returning twice unnoticed.
#include "frame_unwinder.h"

#include "epilogue_check_windows.h"

#include <windows.h>

#include <mutex>

namespace bt {
namespace {

// One walk at a time in the process: the guard below is shared.
std::mutex g_walkMutex;

struct FaultGuard {
    DWORD thread = 0;
    CONTEXT resume{};
    LONG volatile armed = 0;
    LONG volatile faulted = 0;
};
FaultGuard g_guard;

bool isMemoryFault(DWORD code) {
    return code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR || code == STATUS_GUARD_PAGE_VIOLATION;
}

LONG CALLBACK resumeAfterFault(EXCEPTION_POINTERS* pointers) {
    if (!g_guard.armed || ::GetCurrentThreadId() != g_guard.thread) return EXCEPTION_CONTINUE_SEARCH;
    if (!isMemoryFault(pointers->ExceptionRecord->ExceptionCode)) return EXCEPTION_CONTINUE_SEARCH;
    g_guard.armed = 0;
    g_guard.faulted = 1;
    *pointers->ContextRecord = g_guard.resume;
    return EXCEPTION_CONTINUE_EXECUTION;
}

// Returns a second time, with `faulted` set, when RtlVirtualUnwind (or the
// look at the code before it) faults. Nothing after the capture may rely on
// a register that the unwind changed.
__attribute__((noinline)) bool guardedUnwind(DWORD64 imageBase, PRUNTIME_FUNCTION function, CONTEXT* context) {
    g_guard.faulted = 0;
    ::RtlCaptureContext(&g_guard.resume);
    if (g_guard.faulted) return false;
    g_guard.armed = 1;
    if (!epilogueSearchEnds(reinterpret_cast<unsigned char const*>(context->Rip), imageBase, *function)) {
        g_guard.armed = 0;
        return false;
    }
    PVOID handlerData = nullptr;
    DWORD64 establisherFrame = 0;
    ::RtlVirtualUnwind(UNW_FLAG_NHANDLER, imageBase, context->Rip, function, context, &handlerData,
                       &establisherFrame, nullptr);
    g_guard.armed = 0;
    return true;
}

CONTEXT contextOf(norvane_1::Context const& r) {
    CONTEXT context{};
    context.ContextFlags = CONTEXT_FULL;
    context.Rax = r.EAX;
    context.Rbx = r.EBX;
    context.Rcx = r.ECX;
    context.Rdx = r.EDX;
    context.Rsi = r.ESI;
    context.Rdi = r.EDI;
    context.Rbp = r.EBP;
    context.Rsp = r.ESP;
    context.Rip = r.EIP;
    context.R8 = r.R8;
    context.R9 = r.R9;
    context.R10 = r.R10;
    context.R11 = r.R11;
    context.R12 = r.R12;
    context.R13 = r.R13;
    context.R14 = r.R14;
    context.R15 = r.R15;
    return context;
}

norvane_1::Context registersOf(CONTEXT const& c) {
    norvane_1::Context r;
    r.EAX = c.Rax;
    r.EBX = c.Rbx;
    r.ECX = c.Rcx;
    r.EDX = c.Rdx;
    r.ESI = c.Rsi;
    r.EDI = c.Rdi;
    r.EBP = c.Rbp;
    r.ESP = c.Rsp;
    r.EIP = c.Rip;
    r.R8 = c.R8;
    r.R9 = c.R9;
    r.R10 = c.R10;
    r.R11 = c.R11;
    r.R12 = c.R12;
    r.R13 = c.R13;
    r.R14 = c.R14;
    r.R15 = c.R15;
    return r;
}

class SystemUnwinder final : public FrameUnwinder {
public:
    SystemUnwinder() : m_lock(g_walkMutex), m_handler(::AddVectoredExceptionHandler(1, resumeAfterFault)) {}
    ~SystemUnwinder() override {
        if (m_handler) ::RemoveVectoredExceptionHandler(m_handler);
    }
    SystemUnwinder(SystemUnwinder const&) = delete;
    SystemUnwinder& operator=(SystemUnwinder const&) = delete;

    bool ready() const { return m_handler != nullptr; }

    bool start(norvane_1::Context const& registers) override {
        g_guard.thread = ::GetCurrentThreadId();
        m_context = contextOf(registers);
        return true;
    }

    // A function without unwind information (a leaf, or code the compiler
    // didn't describe) stops the walk; the scan finds its return address.
    Step step(std::uint64_t& instructionPointer, std::uint64_t& stackPointer) override {
        DWORD64 imageBase = 0;
        PRUNTIME_FUNCTION function = ::RtlLookupFunctionEntry(m_context.Rip, &imageBase, nullptr);
        if (function == nullptr || !guardedUnwind(imageBase, function, &m_context)) return Step::stopped;
        if (m_context.Rip == 0) return Step::end;
        instructionPointer = m_context.Rip;
        stackPointer = m_context.Rsp;
        return Step::caller;
    }

    norvane_1::Context registers() override { return registersOf(m_context); }

    bool read(std::uint64_t address, void* buffer, std::size_t size) override {
        SIZE_T got = 0;
        return ::ReadProcessMemory(::GetCurrentProcess(), reinterpret_cast<LPCVOID>(address), buffer, size, &got) &&
               got == size;
    }

private:
    std::lock_guard<std::mutex> m_lock;
    PVOID m_handler;
    CONTEXT m_context{};
};

}  // namespace

std::unique_ptr<FrameUnwinder> createLocalUnwinder() {
    auto unwinder = std::make_unique<SystemUnwinder>();
    if (!unwinder->ready()) return nullptr;
    return unwinder;
}

}  // namespace bt
