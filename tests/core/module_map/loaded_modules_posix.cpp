#include "loaded_modules.h"

#include <elf.h>
#include <link.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

namespace norvane_test {
namespace {

constexpr std::uint64_t kPage = 4096;

std::string programPath() {
    char buffer[PATH_MAX];
    ssize_t const length = ::readlink("/proc/self/exe", buffer, sizeof buffer);
    return length > 0 ? std::string(buffer, static_cast<std::size_t>(length)) : std::string();
}

int addModule(dl_phdr_info* info, std::size_t, void* data) {
    auto* modules = static_cast<std::vector<LoadedModule>*>(data);
    if (info->dlpi_addr == ::getauxval(AT_SYSINFO_EHDR)) return 0;  // the vdso has no file
    std::uint64_t low = UINT64_MAX, high = 0;
    LoadedModule module;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        ElfW(Phdr) const& segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD) continue;
        low = std::min<std::uint64_t>(low, segment.p_vaddr / kPage * kPage);
        high = std::max<std::uint64_t>(high, segment.p_vaddr + segment.p_memsz);
        module.hasCode = module.hasCode || (segment.p_flags & PF_X) != 0;
    }
    if (low >= high) return 0;
    module.base = info->dlpi_addr + low;
    module.size = (high + kPage - 1) / kPage * kPage - low;
    module.path = info->dlpi_name && *info->dlpi_name ? info->dlpi_name : programPath();
    modules->push_back(module);
    return 0;
}

}  // namespace

std::vector<LoadedModule> listLoadedModules() {
    std::vector<LoadedModule> modules;
    ::dl_iterate_phdr(addModule, &modules);
    return modules;
}

}  // namespace norvane_test
