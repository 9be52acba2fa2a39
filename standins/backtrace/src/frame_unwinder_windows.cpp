// Unwinding with the system's unwinder, on Windows. Windows code only.
//
// RtlLookupFunctionEntry finds a function's unwind information in its
// module's exception directory, and RtlVirtualUnwind applies it to a
// register context. RtlVirtualUnwind reads the stack wherever the context
// and the unwind codes point; on a damaged stack that can be anywhere. So
// each of its calls, and each read of the walk's own, runs under a guard: a
// vectored exception handler that, when the walking thread faults while the
// guard is armed, resumes that thread where the guard was set, as the return
// of RtlCaptureContext, which then reports the fault instead of returning
// twice unnoticed.
#include "frame_unwinder.h"

#include "epilogue_check_windows.h"

#include <windows.h>

#include <cstring>
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

// Runs `work` under the guard: false, with the work cut short, if it
// faulted. RtlCaptureContext returns a second time then, with `faulted` set;
// nothing after the capture may rely on a register that the work changed.
template <typename Work>
__attribute__((noinline)) bool guarded(Work const& work) {
    g_guard.faulted = 0;
    ::RtlCaptureContext(&g_guard.resume);
    if (g_guard.faulted) return false;
    g_guard.armed = 1;
    bool const done = work();
    g_guard.armed = 0;
    return done;
}

// One frame, by the function's unwind information. Before it, the same
// search for an epilogue that RtlVirtualUnwind makes, with a bound.
bool unwindFrame(DWORD64 imageBase, PRUNTIME_FUNCTION function, CONTEXT* context) {
    return guarded([&] {
        if (!epilogueSearchEnds(reinterpret_cast<unsigned char const*>(context->Rip), imageBase, *function)) {
            return false;
        }
        PVOID handlerData = nullptr;
        DWORD64 establisherFrame = 0;
        ::RtlVirtualUnwind(UNW_FLAG_NHANDLER, imageBase, context->Rip, function, context, &handlerData,
                           &establisherFrame, nullptr);
        return true;
    });
}

// Which register of CONTEXT each register of the report's context is.
struct RegisterPair {
    std::uint64_t norvane_1::Context::*ours;
    DWORD64 CONTEXT::*system;
};
constexpr RegisterPair kRegisters[] = {
    {&norvane_1::Context::EAX, &CONTEXT::Rax}, {&norvane_1::Context::EBX, &CONTEXT::Rbx},
    {&norvane_1::Context::ECX, &CONTEXT::Rcx}, {&norvane_1::Context::EDX, &CONTEXT::Rdx},
    {&norvane_1::Context::ESI, &CONTEXT::Rsi}, {&norvane_1::Context::EDI, &CONTEXT::Rdi},
    {&norvane_1::Context::EBP, &CONTEXT::Rbp}, {&norvane_1::Context::ESP, &CONTEXT::Rsp},
    {&norvane_1::Context::EIP, &CONTEXT::Rip}, {&norvane_1::Context::R8, &CONTEXT::R8},
    {&norvane_1::Context::R9, &CONTEXT::R9},   {&norvane_1::Context::R10, &CONTEXT::R10},
    {&norvane_1::Context::R11, &CONTEXT::R11}, {&norvane_1::Context::R12, &CONTEXT::R12},
    {&norvane_1::Context::R13, &CONTEXT::R13}, {&norvane_1::Context::R14, &CONTEXT::R14},
    {&norvane_1::Context::R15, &CONTEXT::R15},
};

CONTEXT contextOf(norvane_1::Context const& registers) {
    CONTEXT context{};
    context.ContextFlags = CONTEXT_FULL;
    for (RegisterPair const& pair : kRegisters) context.*pair.system = registers.*pair.ours;
    return context;
}

norvane_1::Context registersOf(CONTEXT const& context) {
    norvane_1::Context registers;
    for (RegisterPair const& pair : kRegisters) registers.*pair.ours = context.*pair.system;
    return registers;
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
        if (function == nullptr || !unwindFrame(imageBase, function, &m_context)) return Step::stopped;
        if (m_context.Rip == 0) return Step::end;
        instructionPointer = m_context.Rip;
        stackPointer = m_context.Rsp;
        return Step::caller;
    }

    norvane_1::Context registers() override { return registersOf(m_context); }

    // A plain copy under the guard: ReadProcessMemory would cost a call into
    // the system for every frame.
    bool read(std::uint64_t address, void* buffer, std::size_t size) override {
        return guarded([&] {
            std::memcpy(buffer, reinterpret_cast<void const*>(address), size);
            return true;
        });
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
