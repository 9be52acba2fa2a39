// load_bench's view of its process on Linux.
#include "load_probe.h"

#include <dirent.h>
#include <dlfcn.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>

namespace load_bench {

ProcessFigures processFigures() {
    ProcessFigures figures{};
    if (DIR* tasks = ::opendir("/proc/self/task")) {
        while (dirent const* entry = ::readdir(tasks)) figures.threads += entry->d_name[0] != '.';
        ::closedir(tasks);
    }
    if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
        long pages = 0, resident = 0;
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) == 2)
            figures.residentKiB = static_cast<double>(resident) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1024;
        std::fclose(statm);
    }
    timespec cpu{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu);
    figures.cpuMs = static_cast<double>(cpu.tv_sec) * 1e3 + static_cast<double>(cpu.tv_nsec) / 1e6;
    return figures;
}

void* loadLibrary() { return ::dlopen(NORVANE_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL); }

void* librarySymbol(void* library, char const* name) { return ::dlsym(library, name); }

}  // namespace load_bench
