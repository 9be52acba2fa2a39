// The code ranges of the modules a helper was told of, and their names.
// Portable code only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bt {

class ModuleRanges {
public:
    void add(std::uint64_t begin, std::uint64_t end, std::wstring const& path);
    // Whether the address lies in a range.
    bool contains(std::uint64_t address) const;
    // The file name (without directories) of the module at the address;
    // empty if none.
    std::wstring nameAt(std::uint64_t address) const;

private:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
        std::wstring name;
    };
    Range const* find(std::uint64_t address) const;

    std::vector<Range> m_ranges;  // sorted by end
};

}  // namespace bt
