// The debug-help libraries, bound ahead of any crash. Portable interface;
// dbghelp_windows.cpp and dbghelp_posix.cpp implement it.
#pragma once

namespace norvane_1 {

// Loads the libraries DbgHelp binds and keeps them for the life of the
// process, so that a crash's DbgHelp finds them loaded: no loading at crash
// time, which costs time and the loader's lock (held for good by a crash
// inside a library's entry point). Nothing to load on Linux. Any thread.
void holdDebugHelpLibraries();

}  // namespace norvane_1
