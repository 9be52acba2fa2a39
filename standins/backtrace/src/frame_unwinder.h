// What the walk asks of the platform: unwinding one frame at a time by the
// code's unwind information, and reading memory without faulting. Portable
// interface; frame_unwinder_posix.cpp (libunwind) and
// frame_unwinder_windows.cpp (the system's unwinder) implement it.
#pragma once

#include <norvane_1/report_records.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace bt {

class FrameUnwinder {
public:
    virtual ~FrameUnwinder() = default;

    enum class Step {
        caller,   // moved to the caller: its instruction pointer and stack pointer are given
        end,      // the stack's natural end: the thread's first frame
        stopped,  // no unwind information for the frame, or it could not be followed
    };

    // Begins a walk at a frame with these registers; false if it can't.
    virtual bool start(norvane_1::Context const& registers) = 0;
    // Moves from the current frame to its caller. A frame whose memory
    // can't be read stops the walk; it never faults.
    virtual Step step(std::uint64_t& instructionPointer, std::uint64_t& stackPointer) = 0;
    // The registers of the current frame, as far as the unwind information
    // restores them; the others keep their values from the start.
    virtual norvane_1::Context registers() = 0;
    // Copies memory of this process; false if any of it can't be read.
    virtual bool read(std::uint64_t address, void* buffer, std::size_t size) = 0;
};

// The unwinder of this process; null when the system offers none. Memory is
// judged readable as it is mapped now.
std::unique_ptr<FrameUnwinder> createLocalUnwinder();

}  // namespace bt
