// POSIX code only.
#include "readable_memory_posix.h"

#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace bt {
namespace {

constexpr std::size_t kPagesAsked = 16;

// How many of the kPagesAsked pages from `first` on can be read, counted up
// to the first that can't: one system call, which copies a byte of each page
// and stops at the first it can't copy, with EFAULT rather than a fault.
std::size_t readablePagesFrom(std::uint64_t first, unsigned pageShift) {
    unsigned char bytes[kPagesAsked];
    iovec local{bytes, sizeof bytes};
    iovec remote[kPagesAsked];
    for (std::size_t i = 0; i < kPagesAsked; ++i) {
        remote[i] = iovec{reinterpret_cast<void*>((first + i) << pageShift), 1};
    }
    ssize_t const copied = ::process_vm_readv(::getpid(), &local, 1, remote, kPagesAsked, 0);
    return copied > 0 ? static_cast<std::size_t>(copied) : 0;
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// "begin-end perms offset device inode [path]". The kernel's own time pages
// ("[vvar]", "[vvar_vclock]") are listed readable, yet parts of them fault
// when read.
// Read with strtoull rather than sscanf, which costs several times as much
// a line, and a crash reads them all.
bool readableMapping(char const* line, std::uint64_t& begin, std::uint64_t& end) {
    char* after = nullptr;
    begin = std::strtoull(line, &after, 16);
    if (after == line || *after != '-') return false;
    char const* const second = after + 1;
    end = std::strtoull(second, &after, 16);
    if (after == second || *after != ' ') return false;
    return after[1] == 'r' && end > begin && std::strstr(after, "[vvar") == nullptr;
}

}  // namespace

ReadableMemory ReadableMemory::ofThisProcess() {
    ReadableMemory memory;
    long const pageSize = ::sysconf(_SC_PAGESIZE);
    while (pageSize > 0 && (std::uint64_t{1} << memory.m_pageShift) < static_cast<std::uint64_t>(pageSize)) {
        ++memory.m_pageShift;
    }
    // A byte of our own stack can always be read: if the system won't copy
    // it, it won't copy any.
    unsigned char const known = 0;
    memory.m_probing = memory.learnPagesFrom(reinterpret_cast<std::uint64_t>(&known) >> memory.m_pageShift);
    if (!memory.m_probing) memory.m_ranges = readableMappings();
    return memory;
}

bool ReadableMemory::holds(std::uint64_t address, std::size_t size) const {
    if (address >= m_lastRange.begin && address < m_lastRange.end && size <= m_lastRange.end - address) return true;
    for (;;) {
        Range const* const range = rangeHolding(address);
        if (range != nullptr && size <= range->end - address) {
            m_lastRange = *range;
            return true;
        }
        // Each pass learns at least one more page, or ends.
        if (!m_probing || !learnPagesFrom((range != nullptr ? range->end : address) >> m_pageShift)) return false;
    }
}

std::vector<ReadableMemory::Range>::iterator ReadableMemory::firstRangeAbove(std::uint64_t address) const {
    return std::upper_bound(m_ranges.begin(), m_ranges.end(), address,
                            [](std::uint64_t a, Range const& r) { return a < r.begin; });
}

ReadableMemory::Range const* ReadableMemory::rangeHolding(std::uint64_t address) const {
    auto const above = firstRangeAbove(address);
    if (above == m_ranges.begin()) return nullptr;
    Range const& range = *(above - 1);
    return address < range.end ? &range : nullptr;
}

// The pages that follow are asked in the same call: a stack and a table of
// unwind information are read upwards.
bool ReadableMemory::learnPagesFrom(std::uint64_t page) const {
    if (std::find(m_unreadablePages.begin(), m_unreadablePages.end(), page) != m_unreadablePages.end()) return false;
    std::size_t const readable = readablePagesFrom(page, m_pageShift);
    if (readable == 0) {
        m_unreadablePages.push_back(page);
        return false;
    }
    Range learnt{page << m_pageShift, (page + readable) << m_pageShift};
    auto at = firstRangeAbove(learnt.begin);
    // Joined with a range it touches on either side, so that a read across
    // the pages of two probes is still answered by one range.
    if (at != m_ranges.begin() && (at - 1)->end >= learnt.begin) {
        --at;
        learnt.begin = at->begin;
        learnt.end = std::max(learnt.end, at->end);
        at = m_ranges.erase(at);
    }
    while (at != m_ranges.end() && at->begin <= learnt.end) {
        learnt.end = std::max(learnt.end, at->end);
        at = m_ranges.erase(at);
    }
    m_ranges.insert(at, learnt);
    return true;
}

std::vector<ReadableMemory::Range> ReadableMemory::readableMappings() {
    std::vector<Range> ranges;
    // The file's own block size is 1 KiB, and each read makes the system
    // write the list out again from where the last one stopped: a larger
    // buffer, which outlives the stream, takes the whole list in a few reads.
    constexpr std::size_t kBufferSize = 64 * 1024;
    std::unique_ptr<char[]> const buffer(new char[kBufferSize]);
    std::unique_ptr<std::FILE, FileCloser> maps(std::fopen("/proc/self/maps", "re"));
    if (!maps) return ranges;
    std::setvbuf(maps.get(), buffer.get(), _IOFBF, kBufferSize);
    char line[4096];
    while (std::fgets(line, sizeof line, maps.get())) {
        Range range{};
        if (!readableMapping(line, range.begin, range.end)) continue;
        if (!ranges.empty() && ranges.back().end == range.begin) {
            ranges.back().end = range.end;
        } else {
            ranges.push_back(range);
        }
        // A line longer than the buffer: skip the rest of it.
        while (std::strchr(line, '\n') == nullptr && std::fgets(line, sizeof line, maps.get())) {
        }
    }
    return ranges;
}

}  // namespace bt
