// The debug facts of the report's modules, read from their files.
// Portable code only.
#include "report_enrichment.h"

#include <norvane_1/dbghelp.h>

#include "logging/logging.h"
#include "report_progress.h"

namespace norvane_1 {
namespace internal {

bool readDebugIdentities(ModuleInfoList& modules, wchar_t const* reportPath) {
    NORVANE_LOG_INFO(log::prsLogger(), L"Update module map");
    recordProgress("norvane_1::ProblemReportStorage::updateModuleMap", L"Updating module map...", reportPath);
    DbgHelp help;
    if (!help.initialize(nullptr)) {
        NORVANE_LOG_ERROR(log::prsLogger(), L"Failed to initialize symbol server, exit");
        return false;
    }
    for (auto& module : modules) {
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

}  // namespace internal
}  // namespace norvane_1
