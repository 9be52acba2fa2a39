// Building small image files byte by byte, for the image reader tests.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace norvane_test {

class ImageBytes {
public:
    explicit ImageBytes(std::size_t size) : m_bytes(size, 0) {}

    ImageBytes& put(std::size_t offset, std::uint64_t value, std::size_t length) {
        for (std::size_t i = 0; i < length; ++i) m_bytes.at(offset + i) = static_cast<unsigned char>(value >> (8 * i));
        return *this;
    }
    ImageBytes& text(std::size_t offset, char const* text, std::size_t length) {
        m_bytes.at(offset + length - 1);  // throws when it would not fit
        std::memcpy(&m_bytes[offset], text, length);
        return *this;
    }
    std::vector<unsigned char> const& bytes() const { return m_bytes; }

private:
    std::vector<unsigned char> m_bytes;
};

// Copies of `bytes` with a few random bytes changed: a cheap fuzz of what a
// reader does with damage it was not written for.
template <typename Reader>
void readDamagedCopies(std::vector<unsigned char> const& bytes, int copies, Reader read) {
    std::mt19937 random(7);
    for (int i = 0; i < copies; ++i) {
        std::vector<unsigned char> damaged = bytes;
        for (int j = 0; j < 4; ++j) damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
        read(damaged);
    }
}

}  // namespace norvane_test
