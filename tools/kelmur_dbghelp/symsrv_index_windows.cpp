// The file index of a module: what a symbol server files its debug file
// under, read straight from the PE image.
#include "module_map/mapped_file_windows.h"
#include "module_map/pe_image.h"

#include <windows.h>
#include <dbghelp.h>

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
    norvane_1::MappedFile const file(File);
    if (file.bytes() == nullptr) {
        ::SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    norvane_1::pe_image::Identity identity;
    if (!norvane_1::pe_image::read(file.bytes(), file.size(), identity)) {
        ::SetLastError(ERROR_BAD_EXE_FORMAT);
        return FALSE;
    }
    fill(*Info, File, identity);
    return TRUE;
}
