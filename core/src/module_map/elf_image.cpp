// Reading an ELF file's identity: its load segments, its build-id note
// and its symbol table. Portable code only.
#include "elf_image.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace norvane_1 {
namespace elf_image {
namespace {

constexpr std::uint32_t kLoad = 1;         // PT_LOAD
constexpr std::uint32_t kNoteSegment = 4;  // PT_NOTE
constexpr std::uint32_t kSymbolTable = 2;  // SHT_SYMTAB
constexpr std::uint32_t kNoteSection = 7;  // SHT_NOTE
constexpr std::uint32_t kNoBits = 8;       // SHT_NOBITS
constexpr std::uint32_t kBuildIdNote = 3;  // NT_GNU_BUILD_ID
constexpr std::size_t kHeaderSize = 64;
constexpr std::size_t kSegmentEntrySize = 56;
constexpr std::size_t kSectionEntrySize = 64;
// Notes and section names are read whole; real ones are far smaller.
constexpr std::uint64_t kMaxBlock = 1 << 20;

std::uint64_t little(unsigned char const* bytes, std::size_t length) {
    std::uint64_t value = 0;
    for (std::size_t i = length; i-- > 0;) value = value << 8 | bytes[i];
    return value;
}

// A fixed-size record of the file, read whole; its fields by offset.
class Record {
public:
    Record() = default;
    Record(unsigned char const* bytes, std::size_t length) {
        std::memcpy(m_bytes, bytes, std::min(length, sizeof m_bytes));
    }
    bool load(ByteSource const& file, std::uint64_t offset, std::size_t length) {
        return length <= sizeof m_bytes && file.read(offset, m_bytes, length);
    }
    std::uint64_t field(std::size_t offset, std::size_t length) const { return little(m_bytes + offset, length); }

private:
    unsigned char m_bytes[kHeaderSize] = {};
};

struct Table {
    std::uint64_t offset = 0;
    std::uint64_t count = 0;
    std::uint64_t entrySize = 0;
};

struct Header {
    Table segments;
    Table sections;
    std::uint64_t namesIndex = 0;
};

// An entry count no larger than the entries the file can hold.
std::uint64_t fittingCount(ByteSource const& file, Table const& table) {
    if (table.entrySize == 0 || table.offset > file.size()) return 0;
    return std::min(table.count, (file.size() - table.offset) / table.entrySize);
}

bool readHeader(ByteSource const& file, Header& header) {
    Record record;
    static unsigned char const kMagic[6] = {0x7F, 'E', 'L', 'F', 2, 1};  // 64-bit, little-endian
    unsigned char ident[6];
    if (!file.read(0, ident, sizeof ident) || std::memcmp(ident, kMagic, sizeof kMagic) != 0) return false;
    if (!record.load(file, 0, kHeaderSize)) return false;
    header.segments = Table{record.field(0x20, 8), record.field(0x38, 2), record.field(0x36, 2)};
    header.sections = Table{record.field(0x28, 8), record.field(0x3C, 2), record.field(0x3A, 2)};
    header.namesIndex = record.field(0x3E, 2);
    if (header.segments.entrySize < kSegmentEntrySize) header.segments.count = 0;
    if (header.sections.entrySize < kSectionEntrySize) header.sections.count = 0;
    return true;
}

// Files with very many sections keep the true counts in section 0.
void readExtendedCounts(ByteSource const& file, Header& header) {
    Record first;
    if (header.sections.entrySize < kSectionEntrySize || header.sections.offset == 0 ||
        !first.load(file, header.sections.offset, kSectionEntrySize)) {
        return;
    }
    if (header.sections.count == 0) header.sections.count = first.field(32, 8);
    if (header.namesIndex == 0xFFFF) header.namesIndex = first.field(40, 4);
    if (header.segments.count == 0xFFFF) header.segments.count = first.field(44, 4);
}

bool readBlock(ByteSource const& file, std::uint64_t offset, std::uint64_t length, std::vector<unsigned char>& out) {
    if (length > kMaxBlock) return false;
    out.resize(static_cast<std::size_t>(length));
    return file.read(offset, out.data(), out.size());
}

// Calls `use` with each entry of a table, in order, until it returns false.
// The entries are read a chunk at a time: a read of its own for each would
// cost a system call per entry, and a crash reads the tables of every module
// its stack passes through.
template <typename Use>
void forEachEntry(ByteSource const& file, Table const& table, std::uint64_t count, std::size_t entryLength, Use use) {
    if (count == 0) return;  // also every table with entries of size 0
    std::uint64_t const kChunkEntries = std::min<std::uint64_t>(256, kMaxBlock / table.entrySize);
    std::vector<unsigned char> chunk;
    for (std::uint64_t first = 0; first < count; first += kChunkEntries) {
        std::uint64_t const entries = std::min(kChunkEntries, count - first);
        if (!readBlock(file, table.offset + first * table.entrySize, entries * table.entrySize, chunk)) return;
        for (std::uint64_t i = 0; i < entries; ++i) {
            if (!use(Record(chunk.data() + i * table.entrySize, entryLength))) return;
        }
    }
}

std::uint64_t alignUp(std::uint64_t value, std::uint64_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

// The descriptor of a "GNU" build-id note among the notes of a block.
bool findBuildId(std::vector<unsigned char> const& notes, std::uint64_t alignment,
                 std::vector<unsigned char>& buildId) {
    alignment = alignment == 8 ? 8 : 4;
    std::uint64_t at = 0;
    while (notes.size() >= 12 && at <= notes.size() - 12) {
        std::uint64_t const nameSize = little(&notes[at], 4);
        std::uint64_t const descSize = little(&notes[at + 4], 4);
        std::uint64_t const type = little(&notes[at + 8], 4);
        std::uint64_t const name = at + 12;
        std::uint64_t const desc = name + alignUp(nameSize, alignment);
        if (desc > notes.size() || descSize > notes.size() - desc) return false;
        if (type == kBuildIdNote && nameSize == 4 && std::memcmp(&notes[name], "GNU", 4) == 0) {
            buildId.assign(notes.begin() + static_cast<std::ptrdiff_t>(desc),
                           notes.begin() + static_cast<std::ptrdiff_t>(desc + descSize));
            return true;
        }
        at = desc + alignUp(descSize, alignment);
    }
    return false;
}

struct Segment {
    std::uint32_t type = 0;
    std::uint64_t offset = 0;
    std::uint64_t address = 0;
    std::uint64_t fileSize = 0;
    std::uint64_t memorySize = 0;
    std::uint64_t alignment = 0;
};

Segment segmentOf(Record const& record) {
    Segment segment;
    segment.type = static_cast<std::uint32_t>(record.field(0, 4));
    segment.offset = record.field(8, 8);
    segment.address = record.field(16, 8);
    segment.fileSize = record.field(32, 8);
    segment.memorySize = record.field(40, 8);
    segment.alignment = record.field(48, 8);
    return segment;
}

void readSegments(ByteSource const& file, Header const& header, Identity& identity) {
    std::uint64_t low = UINT64_MAX;
    std::uint64_t high = 0;
    forEachEntry(file, header.segments, fittingCount(file, header.segments), kSegmentEntrySize,
                 [&](Record const& record) {
                     Segment const segment = segmentOf(record);
                     bool const fits = segment.address <= UINT64_MAX - kPageSize &&
                                       segment.memorySize <= UINT64_MAX - kPageSize - segment.address;
                     if (segment.type == kLoad && fits) {
                         low = std::min(low, segment.address);
                         high = std::max(high, segment.address + segment.memorySize);
                     }
                     std::vector<unsigned char> notes;
                     if (segment.type == kNoteSegment && identity.buildId.empty() &&
                         readBlock(file, segment.offset, segment.fileSize, notes)) {
                         findBuildId(notes, segment.alignment, identity.buildId);
                     }
                     return true;
                 });
    if (low < high) identity.imageSize = alignUp(high, kPageSize) - low / kPageSize * kPageSize;
}

struct Section {
    std::uint32_t name = 0;
    std::uint32_t type = 0;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::uint64_t alignment = 0;
};

Section sectionOf(Record const& record) {
    Section section;
    section.name = static_cast<std::uint32_t>(record.field(0, 4));
    section.type = static_cast<std::uint32_t>(record.field(4, 4));
    section.offset = record.field(24, 8);
    section.size = record.field(32, 8);
    section.alignment = record.field(48, 8);
    return section;
}

std::string sectionName(std::vector<unsigned char> const& names, std::uint32_t at) {
    if (at >= names.size()) return std::string();
    auto const begin = names.begin() + at;
    return std::string(begin, std::find(begin, names.end(), 0));
}

bool isDebugInformation(std::string const& name) { return name == ".debug_info" || name == ".zdebug_info"; }

void readSections(ByteSource const& file, Header const& header, Identity& identity) {
    std::uint64_t const count = fittingCount(file, header.sections);
    std::vector<unsigned char> names;
    Record namesEntry;
    if (header.namesIndex < count &&
        namesEntry.load(file, header.sections.offset + header.namesIndex * header.sections.entrySize,
                        kSectionEntrySize)) {
        Section const namesSection = sectionOf(namesEntry);
        readBlock(file, namesSection.offset, namesSection.size, names);
    }
    forEachEntry(file, header.sections, count, kSectionEntrySize, [&](Record const& record) {
        Section const section = sectionOf(record);
        if (section.type == kNoBits) return true;
        if (section.type == kSymbolTable || isDebugInformation(sectionName(names, section.name))) {
            identity.hasSymbols = true;
        }
        std::vector<unsigned char> notes;
        if (section.type == kNoteSection && identity.buildId.empty() &&
            readBlock(file, section.offset, section.size, notes)) {
            findBuildId(notes, section.alignment, identity.buildId);
        }
        return true;
    });
}

}  // namespace

bool MemoryBytes::read(std::uint64_t offset, void* out, std::size_t length) const {
    if (offset > m_bytes.size() || length > m_bytes.size() - offset) return false;
    if (length != 0) std::memcpy(out, m_bytes.data() + offset, length);
    return true;
}

bool read(ByteSource const& file, Identity& identity) {
    identity = Identity();
    Header header;
    if (!readHeader(file, header)) return false;
    readExtendedCounts(file, header);
    readSegments(file, header, identity);
    readSections(file, header, identity);
    return true;
}

}  // namespace elf_image
}  // namespace norvane_1
