// Linux: the ELF reader on damaged copies of a small file made here, and the
// identity and separate debug file read from that file.
#include "image_bytes.h"

#include "module_map/elf_debug_identity.h"
#include "module_map/elf_image.h"

#include "test_environment.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace norvane_test {
namespace {

using norvane_1::elf_image::Identity;
using norvane_1::elf_image::MemoryBytes;

// Two loadable segments spanning 0x0 to 0x3010, and a note segment with an
// 8-byte build id 01 02 .. 08.
std::vector<unsigned char> smallFile() {
    ImageBytes file(256);
    file.text(0, "\177ELF\2\1\1", 7).put(0x10, 3, 2).put(0x12, 62, 2).put(0x14, 1, 4);  // 64-bit LE, ET_DYN, x86-64
    file.put(0x20, 64, 8).put(0x34, 64, 2).put(0x36, 56, 2).put(0x38, 3, 2).put(0x3A, 64, 2);
    file.put(64, 1, 4).put(64 + 40, 0x1234, 8);                                         // PT_LOAD at 0
    file.put(120, 1, 4).put(120 + 16, 0x3000, 8).put(120 + 40, 0x10, 8);                // PT_LOAD at 0x3000
    file.put(176, 4, 4).put(176 + 8, 232, 8).put(176 + 32, 24, 8).put(176 + 48, 4, 8);  // PT_NOTE
    file.put(232, 4, 4).put(236, 8, 4).put(240, 3, 4).text(244, "GNU", 4).put(248, 0x0807060504030201, 8);
    return file.bytes();
}

TEST(ElfImage, DamagedCopiesAreReadWithinTheirBytes) {
    readDamagedCopies(smallFile(), 20000, [](std::vector<unsigned char> const& bytes) {
        Identity identity;
        norvane_1::elf_image::read(MemoryBytes(bytes), identity);
        ASSERT_LE(identity.buildId.size(), bytes.size());
    });
    // Counts and sizes at their largest.
    for (auto [offset, length] : std::vector<std::pair<std::size_t, std::size_t>>{
             {0x38, 2}, {0x36, 2}, {0x20, 8}, {176 + 32, 8}, {232, 4}, {236, 4}}) {
        std::vector<unsigned char> bytes = smallFile();
        for (std::size_t i = 0; i < length; ++i) bytes[offset + i] = 0xFF;
        Identity identity;
        norvane_1::elf_image::read(MemoryBytes(bytes), identity);
    }
}

TEST(ElfDebugIdentity, FindsTheSeparateDebugFileByBuildId) {
    ScratchDirectory scratch("elf_identity");
    std::filesystem::path const file = scratch.path() / "small.so";
    std::ofstream(file, std::ios::binary).write(reinterpret_cast<char const*>(smallFile().data()), 256);
    norvane_1::DbgHelpFileInfo info;
    ASSERT_TRUE(norvane_1::readElfDebugIdentity(file.wstring(), scratch.path().string(), info));
    EXPECT_EQ(info.guid.Data1, 0x04030201u);
    EXPECT_EQ(info.guid.Data3, 0x0807u);
    EXPECT_EQ(info.guid.Data4[0], 0u);  // an 8-byte id leaves the rest zero
    EXPECT_EQ(info.size, 0x4000u);      // the loadable segments' span, in whole pages
    EXPECT_EQ(info.debugFile, L"");     // no symbols in it, no debug file yet

    std::filesystem::path const debug = scratch.path() / ".build-id" / "01" / "02030405060708.debug";
    std::filesystem::create_directories(debug.parent_path());
    std::ofstream(debug).put('x');
    ASSERT_TRUE(norvane_1::readElfDebugIdentity(file.wstring(), scratch.path().string(), info));
    EXPECT_EQ(info.debugFile, debug.wstring());
}

}  // namespace
}  // namespace norvane_test
