// Linux: the debug identity is read from the ELF file itself; there are no
// debug-help libraries to bind and no dumps to write.
#include <norvane_1/dbghelp.h>

#include "debug_help_libraries.h"
#include "elf_debug_identity.h"

#include <cstring>

namespace norvane_1 {

struct DbgHelpLibs {
    bool bound = false;  // between initialize and uninitialize
    DbgHelpListener* listener = nullptr;
};

namespace {

bool sameGuid(Guid const& a, Guid const& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// The file at `path` if its identity is the one asked for.
std::wstring confirmed(std::wstring const& path, DbgHelpFileInfo const& wanted, bool compareSize) {
    DbgHelpFileInfo found;
    if (path.empty() || !readElfDebugIdentity(path, "/usr/lib/debug", found)) return std::wstring();
    if (!sameGuid(found.guid, wanted.guid) || (compareSize && found.size != wanted.size)) return std::wstring();
    return path;
}

}  // namespace

void holdDebugHelpLibraries() {}

DbgHelp::DbgHelp() : m_libs(new DbgHelpLibs) {}

DbgHelp::~DbgHelp() = default;

bool DbgHelp::initialize(DbgHelpListener* listener) {
    m_libs->listener = listener;
    m_libs->bound = true;
    m_initialized = true;
    return true;
}

bool DbgHelp::isInitialized() const { return m_initialized; }

bool DbgHelp::uninitialize() {
    m_libs->bound = false;
    return true;
}

bool DbgHelp::getFileIndexInfo(std::wstring const& path, DbgHelpFileInfo& info) {
    if (!m_libs->bound) return false;
    readElfDebugIdentity(path, "/usr/lib/debug", info);
    return true;
}

std::uint32_t DbgHelp::getFileCheckSum(std::wstring const&) { return 0; }

std::wstring DbgHelp::findFile(int mode, std::wstring const& path, DbgHelpFileInfo const& info) {
    if (!m_libs->bound) return std::wstring();
    if (mode == 0) return confirmed(path, info, true);
    if (mode == 1) return confirmed(info.debugFile, info, false);
    return std::wstring();
}

void DbgHelp::writeProcessDump(std::wstring const&, unsigned long, int) {}

void DbgHelp::writeOwnDump(std::wstring const&, ::_MINIDUMP_EXCEPTION_INFORMATION*) {}

}  // namespace norvane_1
