// The debug identity of a module file, and process dumps.
//
// On Windows the class binds the debug-help library "kelmur_dbghelp.dll"
// (and "imagehlp.dll" for check sums) at run time, from the program's
// directory or the system's search path. On Linux it reads the ELF file
// itself: the identity is the GNU build id, and there are no dumps.
//
//   norvane_1::DbgHelp help;
//   norvane_1::DbgHelpFileInfo info;
//   if (help.initialize(nullptr) && help.getFileIndexInfo(L"C:\\app\\app.dll", info)) {
//       std::wstring pdb = help.findFile(1, L"", info);  // its debug file, if found
//   }
//
// An object is not safe for use from several threads at once.
#pragma once

#include <norvane_1/export.h>
#include <norvane_1/report_records.h>

#include <cstdint>
#include <memory>
#include <string>

struct _MINIDUMP_EXCEPTION_INFORMATION;  // Windows: the system's type; never defined elsewhere

namespace norvane_1 {

// What identifies a module file and its debug file. A file that can't be
// read gives all zeros and an empty name.
//   Windows: the image's time stamp and SizeOfImage, and the age, GUID and
//            file name of its CodeView debug record.
//   Linux:   timestamp and age 0; size is the span of the loadable
//            segments, from the page of the lowest to the page end of the
//            highest; the GUID holds the first 16 bytes of the GNU build id
//            in file order (a shorter id is padded with zeros); debugFile is
//            the separate debug file /usr/lib/debug/.build-id/xx/yyyy.debug
//            where one exists, else the file itself if it carries symbols
//            (.symtab or .debug_info), else empty.
struct DbgHelpFileInfo {
    std::uint64_t timestamp = 0;
    std::uint64_t size = 0;
    std::uint64_t age = 0;
    std::wstring debugFile;
    Guid guid;
};

// Receives the debug-help library's diagnostic text.
class DbgHelpListener {
public:
    virtual void onDebugText(char const* text) = 0;

protected:
    ~DbgHelpListener() = default;
};

struct DbgHelpLibs;  // the bound libraries; defined by each platform

class NORVANE_API DbgHelp {
public:
    DbgHelp();
    DbgHelp(DbgHelp const&) = delete;
    DbgHelp& operator=(DbgHelp const&) = delete;

    // Binds the libraries and sets up symbol handling. True once it has
    // succeeded; a failed call leaves the former state. The listener, which
    // may be null, must outlive the object.
    virtual bool initialize(DbgHelpListener* listener);
    virtual bool isInitialized() const;
    // Ends symbol handling and releases the debug-help library; true. The
    // object stays initialized in name: the lookups then find nothing.
    virtual bool uninitialize();
    // Fills `info` for the module file at `path`; false only when the
    // debug-help library is not bound.
    virtual bool getFileIndexInfo(std::wstring const& path, DbgHelpFileInfo& info);
    // The check sum the file's contents give (Windows); 0 when it can't be
    // worked out, and always 0 on Linux.
    virtual std::uint32_t getFileCheckSum(std::wstring const& path);
    // Looks for a file by its identity: mode 0 the module at `path` by
    // timestamp and size, mode 1 its debug file by info.debugFile, GUID and
    // age. The path found, or empty. On Linux a file is only confirmed
    // where it is, by its build id.
    virtual std::wstring findFile(int mode, std::wstring const& path, DbgHelpFileInfo const& info);
    virtual ~DbgHelp();

    // Writes a dump of a foreign process. `level` 1 is the smallest, 4 and
    // above the fullest. Nothing is written on Linux.
    void writeProcessDump(std::wstring const& path, unsigned long processId, int level);
    // Writes a dump of this process; the exception information may be null.
    // Nothing is written on Linux.
    void writeOwnDump(std::wstring const& path, ::_MINIDUMP_EXCEPTION_INFORMATION* exceptionInfo);

private:
    bool m_initialized = false;
    std::unique_ptr<DbgHelpLibs> m_libs;
};

}  // namespace norvane_1
