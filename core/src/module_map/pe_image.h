// Reading the identity of a PE image (a Windows program or DLL) from its
// file bytes. Portable, and free of the C++ run-time library, because the
// debug-help DLL compiles it in as well.
//
// Every offset read from the file is checked against `size` before use:
// a truncated or damaged file gives `false` or a partial result, never a
// read outside the bytes.
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
    char const* debugFile = nullptr;  // its file name, as stored (within the bytes; not terminated)
    std::size_t debugFileLength = 0;
};

// False when the bytes are not a PE image; the CodeView part stays empty
// when the image has none or it is damaged.
bool read(unsigned char const* bytes, std::size_t size, Identity& identity);

}  // namespace pe_image
}  // namespace norvane_1
