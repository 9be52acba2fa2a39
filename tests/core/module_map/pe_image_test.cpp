// The PE image reader, on a small image made here and on damaged copies.
#include "image_bytes.h"

#include "module_map/pe_image.h"

#include <gtest/gtest.h>

#include <string>

namespace norvane_test {
namespace {

// One section holding the debug directory, whose only entry is a CodeView
// record naming "x.pdb".
std::vector<unsigned char> smallImage() {
    ImageBytes image(0x240);
    image.text(0, "MZ", 2).put(0x3C, 0x40, 4).text(0x40, "PE\0\0", 4);
    image.put(0x44, 0x8664, 2).put(0x46, 1, 2).put(0x48, 0x5F5E1000, 4).put(0x54, 0xF0, 2);  // file header
    image.put(0x58, 0x20B, 2).put(0x58 + 56, 0x3000, 4).put(0x58 + 108, 16, 4);              // PE32+
    image.put(0x58 + 112 + 6 * 8, 0x1000, 4).put(0x58 + 112 + 6 * 8 + 4, 28, 4);             // debug directory
    image.put(0x148 + 8, 0x100, 4).put(0x148 + 12, 0x1000, 4).put(0x148 + 16, 0x40, 4).put(0x148 + 20, 0x200, 4);
    image.put(0x200 + 12, 2, 4).put(0x200 + 16, 30, 4).put(0x200 + 24, 0x21C, 4);  // the CodeView entry
    image.text(0x21C, "RSDS", 4).put(0x220, 0x0706050403020100, 8).put(0x228, 0x0F0E0D0C0B0A0908, 8);
    image.put(0x230, 3, 4).text(0x234, "x.pdb", 6);
    return image.bytes();
}

TEST(PeImage, ReadsHeadersAndCodeViewRecord) {
    std::vector<unsigned char> const bytes = smallImage();
    norvane_1::pe_image::Identity identity;
    ASSERT_TRUE(norvane_1::pe_image::read(bytes.data(), bytes.size(), identity));
    EXPECT_EQ(identity.machine, 0x8664);
    EXPECT_EQ(identity.timestamp, 0x5F5E1000u);
    EXPECT_EQ(identity.sizeOfImage, 0x3000u);
    ASSERT_TRUE(identity.hasCodeView);
    EXPECT_EQ(identity.guid[0], 0);
    EXPECT_EQ(identity.guid[15], 15);
    EXPECT_EQ(identity.age, 3u);
    EXPECT_EQ(std::string(identity.debugFile, identity.debugFileLength), "x.pdb");
}

TEST(PeImage, TruncatedCopiesGiveWhatTheyHold) {
    std::vector<unsigned char> const bytes = smallImage();
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        std::vector<unsigned char> const part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        norvane_1::pe_image::Identity identity;
        bool const isImage = norvane_1::pe_image::read(part.data(), part.size(), identity);
        EXPECT_EQ(isImage, length >= 0x58 + 60) << length;  // up to SizeOfImage
        EXPECT_EQ(identity.hasCodeView, length >= 0x234 + 6) << length;
    }
}

// The sanitizer builds catch any read outside the bytes.
TEST(PeImage, DamagedCopiesAreReadWithinTheirBytes) {
    readDamagedCopies(smallImage(), 20000, [](std::vector<unsigned char> const& bytes) {
        norvane_1::pe_image::Identity identity;
        norvane_1::pe_image::read(bytes.data(), bytes.size(), identity);
        ASSERT_LE(identity.debugFileLength, sizeof identity.debugFile);
    });
}

}  // namespace
}  // namespace norvane_test
