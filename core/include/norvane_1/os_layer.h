// Small platform wrappers of the library, for the programs that load it.
#pragma once

#include <norvane_1/export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace norvane_1 {
namespace os_layer {

// Called for each item of a directory walk with the item's full path. The
// result is not looked at: a callback can't stop a walk.
class NORVANE_API forEachDirItemCallback {
public:
    virtual ~forEachDirItemCallback();
    virtual bool operator()(std::wstring const& path) = 0;
};

// Calls `callback` for every item directly in `directory` ("." and ".."
// left out), in the system's order. False if the directory can't be listed,
// or its path is shorter than two characters.
NORVANE_API bool forEachDirItem(std::wstring const& directory, forEachDirItemCallback& callback);
// Appends the full paths of the directory's items (or of its subdirectories).
NORVANE_API bool enumDirContent(std::wstring const& directory, std::vector<std::wstring>& items);
NORVANE_API bool enumDirs(std::wstring const& directory, std::vector<std::wstring>& items);
// Removes what can be removed of the directory's tree, and then the directory.
NORVANE_API void removeDirRecursively(std::wstring const& directory);
// Removes the whole tree only when the directory holds the marker file
// "norvane.tag"; false, and nothing removed, without it.
NORVANE_API bool removeTaggedDirectory(std::wstring const& directory);
NORVANE_API std::wstring getTagFileName();

// The path with the platform's separator at its end ("\" on Windows, "/"
// on Linux); an empty path stays empty.
NORVANE_API std::wstring addTrailingSeparator(std::wstring const& path);
NORVANE_API bool isDirectory(std::wstring const& path);
// Seconds since 1970, or -1 if the path can't be examined. One trailing
// separator is dropped first, so a directory may be named either way.
NORVANE_API std::int64_t getFileModificationTime(std::wstring const& path);
NORVANE_API bool deleteFile(std::wstring const& path);
NORVANE_API bool removeDirectory(std::wstring const& path);
// One level only; a directory that exists already counts as made.
NORVANE_API bool createDirectory(wchar_t const* path);
// A name for a new file in `directory`, not taken at the time of the call;
// empty on failure.
NORVANE_API std::wstring getTempFileName(std::wstring const& directory, std::wstring const& prefix);

// Local time as "%Y-%m-%d-%H-%M-%S", "-" and the milliseconds without
// leading zeros ("2016-03-01-10-22-31-5"); "time_stamp" if the time can't be
// read or formatted.
NORVANE_API std::wstring getTimeStamp();

// System facts. Each has a value for failure ("unknown_user", an empty
// string or 0) and none logs.

// The override if one is set; else the system's temporary directory
// (Windows: GetTempPathW; Linux: none of its own), then the first of TEMP,
// TMP and TMPDIR that is set and not empty (Linux: TMPDIR, TMP, TEMP),
// as it stands; else empty.
NORVANE_API std::wstring getTempDirectory();
// An empty value switches the override off. No lock.
NORVANE_API void setTempDirectory(std::wstring const& directory);
NORVANE_API std::wstring getTempDirectoryOverride();
// Empty if the variable is not set.
NORVANE_API std::wstring getEnvironmentValue(wchar_t const* name);
// "<name> <major>.<minor>.<build> <service pack>". Linux: the name from
// /etc/os-release (PRETTY_NAME), the kernel's release from uname for the
// version, and the machine in place of the service pack.
NORVANE_API std::wstring getOsName();
NORVANE_API std::wstring getUserName();
// Windows: the user's documents folder, made if need be. Linux:
// XDG_DOCUMENTS_DIR, else ~/Documents (not made).
NORVANE_API std::wstring getDocumentsDirectory();
// The running program's directory (without its separator) and file name.
NORVANE_API std::wstring getExecutableDirectory();
NORVANE_API std::wstring getExecutableName();
// Starts `path` without waiting, in a process group of its own; with
// `discardOutput` its standard output goes to the null device. Windows
// quotes an argument only when it holds a blank; Linux passes an argument
// vector, no shell. The process id, or 0 if it could not be started.
NORVANE_API std::uint32_t startProcess(std::wstring const& path, std::vector<std::wstring> const& arguments,
                                       bool discardOutput);
NORVANE_API void sleepMilliseconds(std::uint32_t milliseconds);

// Processes.

// True only for a process that exists and has not ended; false for 0.
NORVANE_API bool isProcessAlive(unsigned long pid);
// Starts `path` with `arguments` and waits for it with no time limit: its
// exit code, or -1 if it could not be started. Windows quotes every
// argument and gives the process no console window; Linux passes an
// argument vector, no shell.
NORVANE_API int runProcess(std::wstring const& path, std::vector<std::wstring> const& arguments);
// Asks the process to close (Windows: WM_CLOSE to its first top-level
// window; Linux: SIGTERM), waits up to 2000 ms for it to end, and then ends
// it by force. A process that has ended, or 0, is left alone.
NORVANE_API void closeProcess(unsigned long pid);

}  // namespace os_layer
}  // namespace norvane_1
