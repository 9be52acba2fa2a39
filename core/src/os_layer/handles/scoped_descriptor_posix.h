// A file descriptor that closes itself. POSIX code only.
#pragma once

#include <unistd.h>

#include <utility>

namespace norvane_1 {

class ScopedDescriptor {
public:
    ScopedDescriptor() = default;
    explicit ScopedDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~ScopedDescriptor() { reset(); }
    ScopedDescriptor(ScopedDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    ScopedDescriptor& operator=(ScopedDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            m_descriptor = std::exchange(other.m_descriptor, -1);
        }
        return *this;
    }
    ScopedDescriptor(ScopedDescriptor const&) = delete;
    ScopedDescriptor& operator=(ScopedDescriptor const&) = delete;

    int get() const { return m_descriptor; }
    bool valid() const { return m_descriptor >= 0; }
    void reset() {
        if (m_descriptor >= 0) ::close(std::exchange(m_descriptor, -1));
    }

private:
    int m_descriptor = -1;
};

}  // namespace norvane_1
