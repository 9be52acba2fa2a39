// Reading a PE image's identity: its headers, sections and CodeView debug
// record. Portable code only.
#include "pe_image.h"

namespace norvane_1 {
namespace pe_image {
namespace {

constexpr std::uint32_t kDebugDirectoryIndex = 6;
constexpr std::uint32_t kCodeViewType = 2;
constexpr std::size_t kDebugEntrySize = 28;
constexpr std::size_t kSectionHeaderSize = 40;
constexpr std::size_t kFileHeaderSize = 20;

// Little-endian numbers of the file, through its source.
class Bytes {
public:
    explicit Bytes(Source const& source) : m_source(source) {}

    bool copy(std::uint64_t offset, void* to, std::size_t length) const {
        return m_source.copy(m_source.context, offset, to, length);
    }
    bool u16(std::uint64_t offset, std::uint16_t& value) const {
        unsigned char bytes[2];
        if (!copy(offset, bytes, sizeof bytes)) return false;
        value = static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
        return true;
    }
    bool u32(std::uint64_t offset, std::uint32_t& value) const {
        unsigned char bytes[4];
        if (!copy(offset, bytes, sizeof bytes)) return false;
        value = 0;
        for (int i = 3; i >= 0; --i) value = value << 8 | bytes[i];
        return true;
    }

private:
    Source const& m_source;
};

// A source over bytes in memory.
struct Memory {
    unsigned char const* data;
    std::size_t size;

    static bool copy(void const* context, std::uint64_t offset, void* to, std::size_t length) {
        auto const& memory = *static_cast<Memory const*>(context);
        if (offset > memory.size || length > memory.size - offset) return false;
        auto* target = static_cast<unsigned char*>(to);
        for (std::size_t i = 0; i < length; ++i) target[i] = memory.data[offset + i];
        return true;
    }
};

struct Headers {
    std::uint64_t fileHeader = 0;
    std::uint64_t optionalHeader = 0;
    std::uint16_t optionalSize = 0;
    std::uint16_t sectionCount = 0;
    bool pe32Plus = false;
};

bool readHeaders(Bytes const& bytes, Headers& headers, Identity& identity) {
    std::uint16_t mz = 0;
    std::uint32_t peOffset = 0;
    std::uint32_t signature = 0;
    if (!bytes.u16(0, mz) || mz != 0x5A4D || !bytes.u32(0x3C, peOffset)) return false;
    if (!bytes.u32(peOffset, signature) || signature != 0x00004550) return false;
    headers.fileHeader = std::uint64_t{peOffset} + 4;
    headers.optionalHeader = headers.fileHeader + kFileHeaderSize;
    std::uint16_t magic = 0;
    bool const ok = bytes.u16(headers.fileHeader, identity.machine) &&
                    bytes.u16(headers.fileHeader + 2, headers.sectionCount) &&
                    bytes.u32(headers.fileHeader + 4, identity.timestamp) &&
                    bytes.u16(headers.fileHeader + 16, headers.optionalSize) &&
                    bytes.u16(headers.optionalHeader, magic) &&
                    bytes.u32(headers.optionalHeader + 56, identity.sizeOfImage);
    headers.pe32Plus = magic == 0x20B;
    return ok && (magic == 0x10B || headers.pe32Plus);
}

// The file offset of a relative virtual address, through the section table.
bool fileOffset(Bytes const& bytes, Headers const& headers, std::uint32_t rva, std::uint64_t& offset) {
    std::uint64_t const table = headers.optionalHeader + headers.optionalSize;
    for (std::uint16_t i = 0; i < headers.sectionCount; ++i) {
        std::uint64_t const section = table + std::uint64_t{i} * kSectionHeaderSize;
        std::uint32_t virtualSize = 0, virtualAddress = 0, rawSize = 0, rawPointer = 0;
        if (!bytes.u32(section + 8, virtualSize) || !bytes.u32(section + 12, virtualAddress) ||
            !bytes.u32(section + 16, rawSize) || !bytes.u32(section + 20, rawPointer)) {
            return false;
        }
        std::uint32_t const span = virtualSize > rawSize ? virtualSize : rawSize;
        if (rva >= virtualAddress && rva - virtualAddress < span) {
            offset = std::uint64_t{rawPointer} + (rva - virtualAddress);
            return true;
        }
    }
    return false;
}

// "RSDS", the 16-byte signature, the age and a terminated file name; the
// whole record must be in the file.
void readCodeView(Bytes const& bytes, std::uint64_t offset, std::uint32_t length, Identity& identity) {
    constexpr std::size_t kHead = 24;
    std::uint32_t magic = 0;
    unsigned char last = 0;
    if (length < kHead || !bytes.copy(offset + length - 1, &last, 1)) return;
    if (!bytes.u32(offset, magic) || magic != 0x53445352) return;
    bytes.copy(offset + 4, identity.guid, sizeof identity.guid);
    bytes.u32(offset + 20, identity.age);
    std::size_t const room = length - kHead < sizeof identity.debugFile ? length - kHead : sizeof identity.debugFile;
    if (!bytes.copy(offset + kHead, identity.debugFile, room)) return;
    std::size_t nameLength = 0;
    while (nameLength < room && identity.debugFile[nameLength] != '\0') ++nameLength;
    identity.debugFileLength = nameLength;
    identity.hasCodeView = true;
}

void readDebugDirectory(Bytes const& bytes, Headers const& headers, Identity& identity) {
    std::uint64_t const directories = headers.optionalHeader + (headers.pe32Plus ? 112 : 96);
    std::uint64_t const entry = directories + kDebugDirectoryIndex * 8;
    std::uint32_t rva = 0, length = 0;
    if (entry + 8 > headers.optionalHeader + headers.optionalSize) return;
    if (!bytes.u32(entry, rva) || !bytes.u32(entry + 4, length) || rva == 0) return;
    std::uint64_t offset = 0;
    if (!fileOffset(bytes, headers, rva, offset)) return;
    for (std::uint64_t done = 0; done + kDebugEntrySize <= length; done += kDebugEntrySize) {
        std::uint64_t const item = offset + done;
        std::uint32_t type = 0, dataSize = 0, dataPointer = 0;
        if (!bytes.u32(item + 12, type) || !bytes.u32(item + 16, dataSize) || !bytes.u32(item + 24, dataPointer)) {
            return;
        }
        if (type != kCodeViewType) continue;
        readCodeView(bytes, dataPointer, dataSize, identity);
        if (identity.hasCodeView) return;
    }
}

}  // namespace

bool read(Source const& source, Identity& identity) {
    identity = Identity();
    Bytes const view(source);
    Headers headers;
    if (!readHeaders(view, headers, identity)) return false;
    readDebugDirectory(view, headers, identity);
    return true;
}

bool read(unsigned char const* bytes, std::size_t size, Identity& identity) {
    Memory const memory{bytes, size};
    return read(Source{Memory::copy, &memory}, identity);
}

}  // namespace pe_image
}  // namespace norvane_1
