// System facts on Linux. POSIX code only.
#include <norvane_1/os_layer.h>

#include "os_layer/system_facts.h"

#include <vantix_2_18/utf.h>

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <spawn.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

extern char** environ;

namespace norvane_1 {
namespace os_layer {
namespace {

std::wstring wide(std::string const& text) { return VANTIX_2_18::utf::from_utf8(text); }
std::string narrow(std::wstring const& text) { return VANTIX_2_18::utf::to_utf8(text); }

// PRETTY_NAME of /etc/os-release, its quotes taken off; empty without it.
std::string distributionName() {
    std::ifstream release("/etc/os-release");
    std::string line;
    while (std::getline(release, line)) {
        if (line.rfind("PRETTY_NAME=", 0) != 0) continue;
        std::string value = line.substr(12);
        if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'')) {
            value = value.substr(1, value.size() - 2);
        }
        return value;
    }
    return {};
}

// The user's entry of the password database.
bool userEntry(std::string& name, std::string& home) {
    passwd entry{};
    passwd* found = nullptr;
    std::string buffer(16384, '\0');
    if (::getpwuid_r(::geteuid(), &entry, &buffer[0], buffer.size(), &found) != 0 || found == nullptr) return false;
    name = entry.pw_name ? entry.pw_name : "";
    home = entry.pw_dir ? entry.pw_dir : "";
    return true;
}

// Collects the exit of a started process that nobody waits for, so that it
// leaves no zombie behind. A host that reaps its children itself may take
// it first; then the wait just fails.
void reapLater(pid_t child) {
    std::thread([child] {
        int status = 0;
        ::waitpid(child, &status, 0);
    }).detach();
}

}  // namespace

namespace platform_facts {

std::wstring systemTempDirectory() { return {}; }
std::vector<wchar_t const*> tempDirectoryVariables() { return {L"TMPDIR", L"TMP", L"TEMP"}; }
wchar_t pathSeparator() { return L'/'; }

std::wstring executablePath() {
    char target[4096];
    ssize_t const length = ::readlink("/proc/self/exe", target, sizeof target);
    if (length <= 0 || static_cast<std::size_t>(length) >= sizeof target) return {};
    return wide(std::string(target, static_cast<std::size_t>(length)));
}

}  // namespace platform_facts

std::wstring getEnvironmentValue(wchar_t const* name) {
    char const* value = name ? std::getenv(narrow(name).c_str()) : nullptr;
    return value ? wide(value) : std::wstring();
}

std::wstring getOsName() {
    utsname system{};
    if (::uname(&system) != 0) return {};
    std::string name = distributionName();
    if (name.empty()) name = system.sysname;
    return wide(name + " " + system.release + " " + system.machine);
}

std::wstring getUserName() {
    std::string name;
    std::string home;
    return userEntry(name, home) && !name.empty() ? wide(name) : L"unknown_user";
}

std::wstring getDocumentsDirectory() {
    std::wstring const chosen = getEnvironmentValue(L"XDG_DOCUMENTS_DIR");
    if (!chosen.empty()) return chosen;
    std::wstring homeDirectory = getEnvironmentValue(L"HOME");
    std::string name;
    std::string home;
    if (homeDirectory.empty() && userEntry(name, home)) homeDirectory = wide(home);
    return homeDirectory.empty() ? std::wstring() : addTrailingSeparator(homeDirectory) + L"Documents";
}

std::uint32_t startProcess(std::wstring const& path, std::vector<std::wstring> const& arguments, bool discardOutput) {
    std::vector<std::string> texts{narrow(path)};
    for (auto const& argument : arguments) texts.push_back(narrow(argument));
    std::vector<char*> argv;
    for (auto& text : texts) argv.push_back(&text[0]);
    argv.push_back(nullptr);

    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    ::posix_spawnattr_setpgroup(&attributes, 0);  // a group of its own
    if (discardOutput) ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_RDWR, 0);
    pid_t child = 0;
    int const failed = ::posix_spawn(&child, texts[0].c_str(), &actions, &attributes, argv.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
    if (failed != 0) return 0;
    reapLater(child);
    return static_cast<std::uint32_t>(child);
}

void sleepMilliseconds(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace os_layer
}  // namespace norvane_1
