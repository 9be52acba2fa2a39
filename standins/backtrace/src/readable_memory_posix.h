// Which addresses of this process can be read, as /proc/self/maps tells it
// at one moment. POSIX code only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bt {

class ReadableMemory {
public:
    // The mappings of this process now; empty if they can't be read.
    static ReadableMemory ofThisProcess();

    bool empty() const { return m_ranges.empty(); }
    // Whether all `size` bytes from `address` on can be read.
    bool holds(std::uint64_t address, std::size_t size) const;

private:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
    };
    std::vector<Range> m_ranges;  // sorted, adjacent ones joined
    // The range of the last answer: a walk reads the stack and a few tables
    // of unwind information over and over.
    mutable Range m_last{0, 0};
};

}  // namespace bt
