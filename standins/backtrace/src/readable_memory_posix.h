// Which addresses of this process can be read. POSIX code only.
//
// Pages are asked when a read first comes to them, sixteen at a time, by
// having the system copy one byte of each to us (process_vm_readv on this
// very process). That answers what a list of mappings can't: the part of a
// file's mapping past the file's end, and the kernel's time pages, are
// listed readable yet fault when read. It also costs a walk a few system
// calls rather than the kernel writing out every mapping of the process,
// which the crash's module map has just had done. Where the call is refused
// (a sandbox's system-call filter), /proc/self/maps is read once instead.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bt {

class ReadableMemory {
public:
    // This process's memory; empty if there is no way to tell what is readable.
    static ReadableMemory ofThisProcess();

    bool empty() const { return !m_probing && m_ranges.empty(); }
    // Whether all `size` bytes from `address` on can be read.
    bool holds(std::uint64_t address, std::size_t size) const;

private:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
    };

    std::vector<Range>::iterator firstRangeAbove(std::uint64_t address) const;
    Range const* rangeHolding(std::uint64_t address) const;
    bool learnPagesFrom(std::uint64_t page) const;
    static std::vector<Range> readableMappings();

    // Whether pages are asked of the system, or were listed once.
    bool m_probing = false;
    unsigned m_pageShift = 12;  // pages are a power of two long
    // The readable ranges known, sorted, adjacent ones joined: learnt page
    // by page, or listed; and the pages found unreadable.
    mutable std::vector<Range> m_ranges;
    mutable std::vector<std::uint64_t> m_unreadablePages;
    // The range of the last answer, asked first: a walk reads the stack and
    // a few tables of unwind information over and over.
    mutable Range m_lastRange{0, 0};
};

}  // namespace bt
