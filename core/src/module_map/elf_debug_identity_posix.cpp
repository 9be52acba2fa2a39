// The debug identity of an ELF file on disk: its bytes read through a file
// descriptor for the ELF reader. POSIX code only.
#include "elf_debug_identity.h"

#include "elf_image.h"
#include "scoped_descriptor_posix.h"

#include <gavrel2/path.h>
#include <vantix_2_18/utf.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace norvane_1 {
namespace {

// A regular file read with pread. Opening never blocks: a FIFO or device
// under a module's name is turned away before anything is read.
class FileBytes : public elf_image::ByteSource {
public:
    explicit FileBytes(std::string const& path) : m_fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status;
        if (m_fd.valid() && ::fstat(m_fd.get(), &status) == 0 && S_ISREG(status.st_mode)) {
            m_size = static_cast<std::uint64_t>(status.st_size);
            m_readable = true;
        }
    }

    bool readable() const { return m_readable; }
    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t offset, void* out, std::size_t length) const override {
        if (!m_readable || offset > m_size || length > m_size - offset) return false;
        auto* bytes = static_cast<char*>(out);
        while (length > 0) {
            ssize_t const got = ::pread(m_fd.get(), bytes, length, static_cast<off_t>(offset));
            if (got <= 0) return false;
            bytes += got;
            offset += static_cast<std::uint64_t>(got);
            length -= static_cast<std::size_t>(got);
        }
        return true;
    }

private:
    ScopedDescriptor m_fd;
    std::uint64_t m_size = 0;
    bool m_readable = false;
};

std::string hex(std::vector<unsigned char> const& bytes) {
    static char const kDigits[] = "0123456789abcdef";
    std::string text;
    for (unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

std::wstring separateDebugFile(std::string const& debugRoot, std::vector<unsigned char> const& buildId) {
    if (buildId.size() < 2) return std::wstring();
    std::string const id = hex(buildId);
    std::wstring const candidate = VANTIX_2_18::utf::from_utf8(debugRoot + "/.build-id/" + id.substr(0, 2) + "/" +
                                                               id.substr(2) + ".debug");
    return gavrel2::path_t::exists(candidate) ? candidate : std::wstring();
}

}  // namespace

bool readElfDebugIdentity(std::wstring const& path, std::string const& debugRoot, DbgHelpFileInfo& info) {
    info = DbgHelpFileInfo();
    FileBytes const file(VANTIX_2_18::utf::to_utf8(path));
    elf_image::Identity identity;
    if (!file.readable() || !elf_image::read(file, identity)) return false;
    info.size = identity.imageSize;
    std::memcpy(&info.guid, identity.buildId.data(), std::min(identity.buildId.size(), sizeof info.guid));
    info.debugFile = separateDebugFile(debugRoot, identity.buildId);
    if (info.debugFile.empty() && identity.hasSymbols) info.debugFile = path;
    return true;
}

}  // namespace norvane_1
