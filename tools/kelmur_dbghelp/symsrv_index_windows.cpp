// The file index of a module: what a symbol server files its debug file
// under, read straight from the PE image.
#include "module_map/pe_image.h"
#include "scoped_handle_windows.h"

#include <windows.h>
#include <dbghelp.h>

#include <cstdint>
#include <cstring>

namespace {

// The last component of a path, as the index names the file.
PCWSTR leafOf(PCWSTR path) {
    PCWSTR leaf = path;
    for (PCWSTR at = path; *at != L'\0'; ++at) {
        if (*at == L'\\' || *at == L'/' || *at == L':') leaf = at + 1;
    }
    return leaf;
}

void copyText(WCHAR (&target)[MAX_PATH + 1], PCWSTR text) {
    std::size_t length = 0;
    while (length < MAX_PATH && text[length] != L'\0') ++length;
    std::memcpy(target, text, length * sizeof(WCHAR));
    target[length] = L'\0';
}

// Debug file names are stored as UTF-8; a longer one is cut at MAX_PATH.
void copyDebugFile(WCHAR (&target)[MAX_PATH + 1], char const* name, std::size_t length) {
    int const written = length == 0
                            ? 0
                            : ::MultiByteToWideChar(CP_UTF8, 0, name, static_cast<int>(length), target, MAX_PATH);
    target[written > 0 ? written : 0] = L'\0';
}

// A file read at offsets, a block at a time: the headers, the debug
// directory and the CodeView record take a few reads. Under Wine an open,
// the first read and the close reach the Wine server; a mapping of the
// file cost four calls more, and a crash asks this of every module left in
// its report.
class FileBlocks {
public:
    explicit FileBlocks(PCWSTR path)
        : m_file(::CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}

    bool opened() const { return m_file.valid(); }
    norvane_1::pe_image::Source source() { return {copy, this}; }

private:
    static constexpr std::size_t kBlock = 4096;
    static constexpr std::uint64_t kNone = ~std::uint64_t{0};

    static bool copy(void const* context, std::uint64_t offset, void* to, std::size_t length) {
        return const_cast<FileBlocks*>(static_cast<FileBlocks const*>(context))->copyOut(offset, to, length);
    }

    bool copyOut(std::uint64_t offset, void* to, std::size_t length) {
        auto* target = static_cast<unsigned char*>(to);
        while (length != 0) {
            if (!load(offset / kBlock)) return false;
            std::size_t const within = static_cast<std::size_t>(offset % kBlock);
            if (within >= m_filled) return false;  // past the end of the file
            std::size_t const part = length < m_filled - within ? length : m_filled - within;
            std::memcpy(target, m_block + within, part);
            target += part;
            offset += part;
            length -= part;
        }
        return true;
    }

    bool load(std::uint64_t block) {
        if (block == m_loaded) return true;
        std::uint64_t const start = block * kBlock;
        OVERLAPPED at{};
        at.Offset = static_cast<DWORD>(start);
        at.OffsetHigh = static_cast<DWORD>(start >> 32);
        DWORD got = 0;
        if (!::ReadFile(m_file.get(), m_block, kBlock, &got, &at)) {
            if (::GetLastError() != ERROR_HANDLE_EOF) return false;
            got = 0;
        }
        m_loaded = block;
        m_filled = got;
        return true;
    }

    norvane_1::ScopedFileHandle m_file;
    std::uint64_t m_loaded = kNone;
    std::size_t m_filled = 0;
    unsigned char m_block[kBlock];
};

void fill(SYMSRV_INDEX_INFOW& info, PCWSTR path, norvane_1::pe_image::Identity const& identity) {
    copyText(info.file, leafOf(path));
    info.stripped = FALSE;
    info.timestamp = identity.timestamp;
    info.size = identity.sizeOfImage;
    info.dbgfile[0] = L'\0';
    info.sig = 0;
    info.age = identity.age;
    std::memcpy(&info.guid, identity.guid, sizeof info.guid);
    copyDebugFile(info.pdbfile, identity.debugFile, identity.debugFileLength);
}

}  // namespace

extern "C" BOOL WINAPI SymSrvGetFileIndexInfoW(PCWSTR File, PSYMSRV_INDEX_INFOW Info, DWORD) {
    if (File == nullptr || Info == nullptr || Info->sizeofstruct < sizeof(SYMSRV_INDEX_INFOW)) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    FileBlocks file(File);
    if (!file.opened()) {
        ::SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    norvane_1::pe_image::Identity identity;
    if (!norvane_1::pe_image::read(file.source(), identity)) {
        ::SetLastError(ERROR_BAD_EXE_FORMAT);
        return FALSE;
    }
    fill(*Info, File, identity);
    return TRUE;
}
