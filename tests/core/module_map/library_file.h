// The project's own library file, where the build puts it: the build tells
// its place relative to the test programs (NORVANE_LIBRARY_FROM_BIN).
#pragma once

#include "child_process.h"

#include <filesystem>

namespace norvane_test {

inline std::filesystem::path ownLibraryFile() {
    std::filesystem::path const bin = programBesideThisOne("x").parent_path();
    return (bin / NORVANE_LIBRARY_FROM_BIN).lexically_normal();
}

}  // namespace norvane_test
