// Prints the debug identity DbgHelp reads for one file, for
// check_debug_identity.sh to compare with binutils:
//   debug_identity_print <file>
#include <norvane_1/dbghelp.h>

#include <vantix_2_18/utf.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: debug_identity_print <file>\n");
        return 2;
    }
    std::wstring const file = VANTIX_2_18::utf::from_utf8(argv[1]);
    norvane_1::DbgHelp help;
    bool const initialized = help.initialize(nullptr);
    norvane_1::DbgHelpFileInfo info;
    bool const read = help.getFileIndexInfo(file, info);
    norvane_1::Guid const& g = info.guid;
    std::printf("initialized=%d\nread=%d\n", initialized, read);
    std::printf("timestamp=%llu\nsize=%llu\nage=%llu\n", static_cast<unsigned long long>(info.timestamp),
                static_cast<unsigned long long>(info.size), static_cast<unsigned long long>(info.age));
    std::printf("guid=%08x%04x%04x", static_cast<unsigned>(g.Data1), g.Data2, g.Data3);
    for (unsigned char byte : g.Data4) std::printf("%02x", byte);
    std::printf("\ndebugfile=%s\nchecksum=%u\n", VANTIX_2_18::utf::to_utf8(info.debugFile).c_str(),
                static_cast<unsigned>(help.getFileCheckSum(file)));
    return 0;
}
