// The debug facts of the report's modules, read from their files.
// Portable code only.
#include <norvane_1/crash_handling.h>
#include <norvane_1/dbghelp.h>
#include <norvane_1/problem_report_storage.h>

#include "logging/logging.h"

namespace norvane_1 {

bool ProblemReportStorage::updateModuleMap() {
    NORVANE_LOG_INFO(log::prsLogger(), L"Update module map");
    addCreationLogRecord("norvane_1::ProblemReportStorage::updateModuleMap", L"Updating module map...",
                         getReportPath());
    DbgHelp help;
    if (!help.initialize(nullptr)) {
        NORVANE_LOG_ERROR(log::prsLogger(), L"Failed to initialize symbol server, exit");
        return false;
    }
    for (auto& module : m_moduleInfo) {
        DbgHelpFileInfo info;
        if (!help.getFileIndexInfo(module.FullName, info)) continue;
        module.SymbolName = info.debugFile;
        module.Timestamp = info.timestamp;
        module.Size = info.size;
        module.Guid = info.guid;
        module.Age = info.age;
    }
    help.uninitialize();
    return true;
}

}  // namespace norvane_1
