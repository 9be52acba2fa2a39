// The loaded modules of this process as the platform's loader lists them,
// independently of the module map: dl_iterate_phdr on Linux,
// EnumProcessModules on Windows. Also the text form in which the child
// program hands its own list to a test.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace norvane_test {

struct LoadedModule {
    std::uint64_t base = 0;  // the image's lowest address
    std::uint64_t size = 0;  // its span in memory
    bool hasCode = false;
    std::string path;        // UTF-8
};

std::vector<LoadedModule> listLoadedModules();

// One module per line, "base size hasCode path", then a line "end".
void writeModules(std::ostream& out, std::vector<LoadedModule> const& modules);
// False until the "end" line has been read.
bool readModules(std::istream& in, std::vector<LoadedModule>& modules);

}  // namespace norvane_test
