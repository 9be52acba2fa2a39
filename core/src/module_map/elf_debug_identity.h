// Linux: the debug identity of an ELF file as the DbgHelp record gives it.
#pragma once

#include <norvane_1/dbghelp.h>

#include <string>

namespace norvane_1 {

// Fills `info` for the file at `path`, looking for separate debug files
// under `debugRoot` (normally "/usr/lib/debug"). A file that can't be read
// or is not ELF gives an empty record; false then.
bool readElfDebugIdentity(std::wstring const& path, std::string const& debugRoot, DbgHelpFileInfo& info);

}  // namespace norvane_1
