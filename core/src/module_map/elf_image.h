// Reading the identity of an ELF file (a Linux program or shared library):
// its GNU build id, the span of its loadable segments and whether it
// carries symbols. 64-bit little-endian files only; anything else reads as
// "not an ELF file".
//
// The reader trusts nothing in the file: every offset and count is checked
// against the file's size before it is used, so a truncated or damaged file
// gives `false` or a partial result, never a read outside the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace norvane_1 {
namespace elf_image {

// Random access to the bytes of a file.
class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual std::uint64_t size() const = 0;
    // False unless all `length` bytes from `offset` could be read.
    virtual bool read(std::uint64_t offset, void* out, std::size_t length) const = 0;
};

class MemoryBytes : public ByteSource {
public:
    explicit MemoryBytes(std::vector<unsigned char> bytes) : m_bytes(std::move(bytes)) {}
    std::uint64_t size() const override { return m_bytes.size(); }
    bool read(std::uint64_t offset, void* out, std::size_t length) const override;

private:
    std::vector<unsigned char> m_bytes;
};

struct Identity {
    std::uint64_t imageSize = 0;         // loadable span, whole pages
    std::vector<unsigned char> buildId;  // empty when the file has none
    bool hasSymbols = false;             // a symbol table or DWARF debug information
};

constexpr std::uint64_t kPageSize = 4096;

// False when the bytes are not a 64-bit little-endian ELF file.
bool read(ByteSource const& file, Identity& identity);

}  // namespace elf_image
}  // namespace norvane_1
