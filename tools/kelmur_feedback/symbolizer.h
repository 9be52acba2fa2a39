// Names code addresses of a crashed process after the fact, from the module
// files on this machine and their debug information.
//
//   Linux:   elfutils' libdwfl, each file placed at its load base; separate
//            debug files are found by build id (/usr/lib/debug/.build-id).
//            A file whose build id is not the report's is another build.
//   Windows: the debug-help library with no process behind it; each file is
//            loaded at its base, and its PDB or DWARF read from there. The
//            file is taken on trust: a mingw build's DWARF carries no
//            identity to hold against the report's.
//
// A file that is missing, or one without symbols, simply names nothing.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace kelmur_feedback {

// A module as the crashed process had it.
struct ModuleFile {
    std::wstring path;   // as the report names it
    std::uint64_t base;  // where it was loaded
    // The report's debug identity as the file holds it (module_identity.h);
    // all zero when the report has none.
    std::array<std::uint8_t, 16> identity;
};

struct SourcePlace {
    std::string function;  // as the symbols hold it; empty when unknown
    std::string file;      // empty when there is no line information
    std::uint32_t line = 0;
    // The file here is another build than the one that crashed: its names
    // would mislead, so none are given.
    bool otherBuild = false;
};

class Symbolizer {
public:
    virtual ~Symbolizer() = default;

    // Each file is read once, on first use.
    virtual SourcePlace lookUp(ModuleFile const& module, std::uint64_t address) = 0;
};

std::unique_ptr<Symbolizer> makeSymbolizer();

}  // namespace kelmur_feedback
