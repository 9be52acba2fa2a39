// Reading the identity of a PE image (a Windows program or DLL) from its
// file bytes. Portable, and free of the C++ run-time library, because the
// debug-help DLL compiles it in as well.
//
// The bytes come from a source that copies out what is asked for and says
// where the file has none: a truncated or damaged file gives `false` or a
// partial result, never a read outside the bytes. The source can be bytes
// in memory, or a file read at offsets, a few small reads in all.
#pragma once

#include <cstddef>
#include <cstdint>

namespace norvane_1 {
namespace pe_image {

struct Identity {
    std::uint16_t machine = 0;      // FileHeader.Machine: 0x8664 x64, 0x14c x86, 0x200 IA-64
    std::uint32_t timestamp = 0;    // FileHeader.TimeDateStamp
    std::uint32_t sizeOfImage = 0;  // OptionalHeader.SizeOfImage
    bool hasCodeView = false;       // an "RSDS" debug directory entry was found
    unsigned char guid[16] = {};    // its signature, as stored
    std::uint32_t age = 0;
    char debugFile[260] = {};  // its file name, as stored, cut to fit; not terminated
    std::size_t debugFileLength = 0;
};

// Where an image's bytes come from: `copy` fills `to` with the `length`
// bytes at `offset`, or gives false where the file doesn't hold them all.
struct Source {
    bool (*copy)(void const* context, std::uint64_t offset, void* to, std::size_t length);
    void const* context;
};

// False when the bytes are not a PE image; the CodeView part stays empty
// when the image has none or it is damaged.
bool read(Source const& source, Identity& identity);
bool read(unsigned char const* bytes, std::size_t size, Identity& identity);

}  // namespace pe_image
}  // namespace norvane_1
