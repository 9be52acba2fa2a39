// The "Process" section on Linux, from /proc. POSIX code only.
#include <norvane_1/crash_handling.h>

#include <vantix_2_18/utf.h>

#include <fstream>
#include <sstream>
#include <string>

namespace norvane_1 {
namespace {

std::string procFile(std::uint32_t pid, char const* name) {
    return "/proc/" + (pid == 0 ? std::string("self") : std::to_string(pid)) + "/" + name;
}

// The executable's base name; "comm" as a fallback, which the kernel cuts
// to 15 characters.
std::wstring processName(std::uint32_t pid) {
    char target[4096];
    ssize_t const length = ::readlink(procFile(pid, "exe").c_str(), target, sizeof target - 1);
    if (length > 0) {
        std::string const path(target, static_cast<std::size_t>(length));
        return VANTIX_2_18::utf::from_utf8(path.substr(path.rfind('/') + 1));
    }
    std::ifstream comm(procFile(pid, "comm"));
    std::string name;
    std::getline(comm, name);
    return VANTIX_2_18::utf::from_utf8(name);
}

// A "Vm...:   1234 kB" line of /proc/<pid>/status, in kB.
bool statusValue(std::string const& status, char const* key, unsigned long long& kilobytes) {
    auto const at = status.find(std::string("\n") + key + ":");
    if (at == std::string::npos) return false;
    std::istringstream value(status.substr(at + std::char_traits<char>::length(key) + 2));
    return static_cast<bool>(value >> kilobytes);
}

}  // namespace

std::wstring getProcessName(unsigned long pid) { return processName(static_cast<std::uint32_t>(pid)); }

std::wstring getProcessMemInfo(std::uint32_t pid) {
    std::wstring text = L"Process Name: " + processName(pid) + L"\n";
    std::ifstream file(procFile(pid, "status"));
    std::string const status = "\n" + std::string(std::istreambuf_iterator<char>(file), {});
    unsigned long long virtualSize = 0;
    unsigned long long workingSet = 0;
    // VmSize counts every mapping, committed or only reserved; VmRSS is what
    // is resident, the working set.
    if (statusValue(status, "VmSize", virtualSize) && statusValue(status, "VmRSS", workingSet)) {
        text += L"Virtual Memory Size: " + std::to_wstring(virtualSize) + L"K\n";
        text += L"Working Set Size: " + std::to_wstring(workingSet) + L"K\n";
    }
    return text;
}

}  // namespace norvane_1
