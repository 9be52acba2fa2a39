// POSIX code only.
#include "readable_memory_posix.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace bt {
namespace {

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
    // The file's own block size is 1 KiB, and each read makes the system
    // write the list out again from where the last one stopped: a larger
    // buffer, which outlives the stream, takes the whole list in a few reads.
    constexpr std::size_t kBufferSize = 64 * 1024;
    std::unique_ptr<char[]> const buffer(new char[kBufferSize]);
    std::unique_ptr<std::FILE, FileCloser> maps(std::fopen("/proc/self/maps", "re"));
    if (!maps) return memory;
    std::setvbuf(maps.get(), buffer.get(), _IOFBF, kBufferSize);
    char line[4096];
    while (std::fgets(line, sizeof line, maps.get())) {
        Range range{};
        if (!readableMapping(line, range.begin, range.end)) continue;
        if (!memory.m_ranges.empty() && memory.m_ranges.back().end == range.begin) {
            memory.m_ranges.back().end = range.end;
        } else {
            memory.m_ranges.push_back(range);
        }
        // A line longer than the buffer: skip the rest of it.
        while (std::strchr(line, '\n') == nullptr && std::fgets(line, sizeof line, maps.get())) {
        }
    }
    return memory;
}

bool ReadableMemory::holds(std::uint64_t address, std::size_t size) const {
    if (address >= m_last.begin && address < m_last.end) return size <= m_last.end - address;
    auto const above = std::upper_bound(m_ranges.begin(), m_ranges.end(), address,
                                        [](std::uint64_t a, Range const& r) { return a < r.begin; });
    if (above == m_ranges.begin()) return false;
    Range const& range = *(above - 1);
    if (address >= range.end) return false;
    m_last = range;
    return size <= range.end - address;
}

}  // namespace bt
