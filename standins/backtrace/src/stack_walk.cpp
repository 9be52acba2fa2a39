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
// return address), and this is a word above that point that the scan of the
// stack took for a return address: in a module's code, behind a call
// instruction. It may be stale, left from a call that has returned.
// The frame at the fault itself ("!") is not the walk's: the collection adds
// it from the exception.
//
// How the walk goes on after unwinding stops
// ------------------------------------------
// Every scanned return address above the point where unwinding stopped
// becomes a "?" frame, in order, none skipped, until the scan and the unwind
// information agree: when unwinding from a "?" frame finds as its caller
// exactly the next scanned return address, in exactly the next scanned slot,
// that caller is a "+" frame and unwinding goes on from it. Resuming from
// every "?" frame instead would let one stale address send the unwinder
// over the real frames above it; waiting for the two to agree keeps those.
//
// Every frame found stands higher on the stack than the one before, so a
// walk always ends.
#include "stack_walk.h"

#include <backtrace/bt_helper.h>

#include "call_decoder.h"

#include <optional>

namespace bt {
namespace {

// A guard against a stack that loops without rising; far above any real depth.
constexpr std::size_t kMostFrames = 100000;
// How far above its return address a caller's frame may begin.
constexpr std::uint64_t kFramePointerReach = 1024 * 1024;

class Walk {
public:
    Walk(FrameUnwinder& unwinder, ModuleRanges const& modules, norvane_1::RawStack const& rawStack,
         norvane_1::CleanStack& frames)
        : m_unwinder(unwinder), m_modules(modules), m_rawStack(rawStack), m_frames(frames) {}

    bool run(norvane_1::Context const& registers) {
        if (!m_unwinder.start(registers)) return false;
        std::optional<std::uint64_t> stop = unwindFrom(registers.ESP);
        while (stop) stop = resumeByScan(*stop);
        return true;
    }

private:
    // Unwinds from the unwinder's current frame, whose stack pointer is
    // `stackPointer`; the stack pointer of the last frame it reached, or
    // none at the stack's natural end.
    std::optional<std::uint64_t> unwindFrom(std::uint64_t stackPointer) {
        for (;;) {
            std::uint64_t instruction = 0;
            std::uint64_t caller = 0;
            switch (m_unwinder.step(instruction, caller)) {
                case FrameUnwinder::Step::end: return std::nullopt;
                case FrameUnwinder::Step::stopped: return stackPointer;
                case FrameUnwinder::Step::caller: break;
            }
            if (caller <= stackPointer || !isReturnAddress(instruction) || full()) return stackPointer;
            add(instruction, caller - 8, kFrameUnwound);  // the slot the return address came from
            stackPointer = caller;
        }
    }

    // The scanned return addresses from `stop` upward become "?" frames
    // until unwinding from one agrees with the scan on the next; from there
    // it unwinds on. Where that unwinding stops, or none.
    std::optional<std::uint64_t> resumeByScan(std::uint64_t stop) {
        for (auto scanned = m_rawStack.lower_bound(stop); scanned != m_rawStack.end() && !full(); ++scanned) {
            add(scanned->second, scanned->first, kFrameScanned);
            auto const next = std::next(scanned);
            if (next == m_rawStack.end()) break;
            std::uint64_t instruction = 0;
            std::uint64_t caller = 0;
            if (!startAt(*scanned) || m_unwinder.step(instruction, caller) != FrameUnwinder::Step::caller ||
                caller - 8 != next->first || instruction != next->second) {
                continue;
            }
            add(instruction, caller - 8, kFrameUnwound);
            return unwindFrom(caller);
        }
        return std::nullopt;
    }

    // The frame that a scanned return address returns to: the registers as
    // the unwinder last knew them, with the stack as the return leaves it.
    // Code that keeps a frame pointer saved its caller's right below the
    // return address; a word there that points a little way up the stack is
    // taken for it.
    bool startAt(std::pair<std::uint64_t const, std::uint64_t> const& scanned) {
        norvane_1::Context registers = m_unwinder.registers();
        registers.EIP = scanned.second;
        registers.ESP = scanned.first + 8;
        std::uint64_t savedFramePointer = 0;
        if (m_unwinder.read(scanned.first - 8, &savedFramePointer, sizeof savedFramePointer) &&
            savedFramePointer > scanned.first && savedFramePointer - scanned.first < kFramePointerReach) {
            registers.EBP = savedFramePointer;
        }
        return m_unwinder.start(registers);
    }

    bool full() const { return m_frames.size() >= kMostFrames; }

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
