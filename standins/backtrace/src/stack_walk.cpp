// One walk of a stack. Portable code only.
//
// What the frame kinds say
// ------------------------
// "+" (kFrameUnwound): the frame was found from the one below it by the
// unwind information of that one's code: the compiler's own description of
// where the return address lies. From the fault's registers on, these are
// exact.
// "?" (kFrameScanned): unwinding could go no further (code without unwind
// information, a frame whose memory can't be read, an answer that is no
// return address), and this is the next word above that point that the scan
// of the stack took for a return address: in a module's code, behind a call
// instruction. It may be stale, left from a call that has returned.
// Unwinding resumes from each "?" frame, so the "+" frames above one rest on
// it: they are as sure as it is.
// The frame at the fault itself ("!") is not the walk's: the collection adds
// it from the exception.
//
// Every frame found must stand higher on the stack than the one before, so a
// walk always ends; one that meets garbage falls back on the scan, which
// goes upward too.
#include "stack_walk.h"

#include <backtrace/bt_helper.h>

#include "call_decoder.h"

#include <optional>

namespace bt {
namespace {

// A guard against a stack that loops without rising; far above any real depth.
constexpr std::size_t kMostFrames = 100000;

class Walk {
public:
    Walk(FrameUnwinder& unwinder, ModuleRanges const& modules, norvane_1::RawStack const& rawStack,
         norvane_1::CleanStack& frames)
        : m_unwinder(unwinder), m_modules(modules), m_rawStack(rawStack), m_frames(frames) {}

    bool run(norvane_1::Context registers) {
        if (!m_unwinder.start(registers)) return false;
        for (;;) {
            std::optional<std::uint64_t> const stop = unwindFrom(registers.ESP);
            if (!stop) return true;
            auto const scanned = m_rawStack.lower_bound(*stop);
            if (scanned == m_rawStack.end() || m_frames.size() >= kMostFrames) return true;
            add(scanned->second, scanned->first, kFrameScanned);
            registers = m_unwinder.registers();
            registers.EIP = scanned->second;
            registers.ESP = scanned->first + 8;  // as the return popped it
            if (!m_unwinder.start(registers)) return true;
        }
    }

private:
    // Unwinds from the frame whose stack pointer is `stackPointer`; the
    // stack pointer of the last frame it reached, or none at the stack's
    // natural end.
    std::optional<std::uint64_t> unwindFrom(std::uint64_t stackPointer) {
        for (;;) {
            std::uint64_t instruction = 0;
            std::uint64_t caller = 0;
            switch (m_unwinder.step(instruction, caller)) {
                case FrameUnwinder::Step::end:
                    return std::nullopt;
                case FrameUnwinder::Step::stopped:
                    return stackPointer;
                case FrameUnwinder::Step::caller:
                    break;
            }
            if (caller <= stackPointer || !isReturnAddress(instruction) || m_frames.size() >= kMostFrames) {
                return stackPointer;
            }
            add(instruction, caller - 8, kFrameUnwound);  // the slot the return address came from
            stackPointer = caller;
        }
    }

    bool isReturnAddress(std::uint64_t address) {
        if (!m_modules.contains(address - 1)) return false;
        unsigned char code[2 * kLongestCall];
        if (!m_unwinder.read(address - kLongestCall, code, sizeof code)) return false;
        return callEndsAt(address, code + kLongestCall,
                          [this](std::uint64_t target) { return m_modules.contains(target); });
    }

    void add(std::uint64_t address, std::uint64_t slot, std::uint32_t kind) {
        norvane_1::StackFrame frame;
        frame.address = address;
        frame.stackAddress = slot;
        frame.module = m_modules.nameAt(address);
        frame.kind = kind;
        m_frames.push_back(frame);
    }

    FrameUnwinder& m_unwinder;
    ModuleRanges const& m_modules;
    norvane_1::RawStack const& m_rawStack;
    norvane_1::CleanStack& m_frames;
};

}  // namespace

bool walkStack(FrameUnwinder& unwinder, ModuleRanges const& modules, norvane_1::Context const& registers,
               norvane_1::RawStack const& rawStack, norvane_1::CleanStack& frames) {
    return Walk(unwinder, modules, rawStack, frames).run(registers);
}

}  // namespace bt
