// What load_bench reads of its own process, and how it loads the library.
// load_probe_posix.cpp and load_probe_windows.cpp implement it.
#pragma once

namespace load_bench {

struct ProcessFigures {
    int threads;         // /proc/self/task; a Toolhelp32 snapshot on Windows
    double residentKiB;  // resident set; the working set on Windows
    double cpuMs;        // the process's CPU time so far, user and system
};

ProcessFigures processFigures();

// The library's file, beside this program's; null when it can't be loaded.
void* loadLibrary();
void* librarySymbol(void* library, char const* name);

}  // namespace load_bench
