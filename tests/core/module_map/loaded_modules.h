// The loaded modules of this process as the platform's loader lists them,
// independently of the module map: dl_iterate_phdr on Linux,
// EnumProcessModules on Windows.
#pragma once

#include <cstdint>
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

}  // namespace norvane_test
