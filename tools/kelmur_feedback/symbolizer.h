// Names code addresses of a crashed process after the fact, from the module
// files on this machine and their debug information.
//
//   Linux:   elfutils' libdwfl, each file placed at its load base; separate
//            debug files are found by build id (/usr/lib/debug/.build-id).
//   Windows: the debug-help library with no process behind it; each file is
//            loaded at its base, and its PDB or DWARF read from there.
//
// A file that is missing, or one without symbols, simply names nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace kelmur_feedback {

struct SourcePlace {
    std::string function;  // demangled; empty when unknown
    std::string file;      // empty when there is no line information
    std::uint32_t line = 0;
};

class Symbolizer {
public:
    virtual ~Symbolizer() = default;

    // `modulePath` is the file as the report names it; `base` is where the
    // crashed process had it loaded. Each file is read once, on first use.
    virtual SourcePlace lookUp(std::wstring const& modulePath, std::uint64_t base, std::uint64_t address) = 0;
};

std::unique_ptr<Symbolizer> makeSymbolizer();

}  // namespace kelmur_feedback
