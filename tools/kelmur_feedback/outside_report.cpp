#include "outside_report.h"

#include <norvane_1/module_map.h>

#include <algorithm>

namespace kelmur_feedback {

namespace {

// Frames name their module by its file name, as the library's own do.
std::wstring fileNameOf(std::wstring const& path) { return path.substr(path.find_last_of(L"/\\") + 1); }

}  // namespace

bool AddedStacks::gotThread(std::uint32_t threadId) const {
    return std::find(threadIds.begin(), threadIds.end(), threadId) != threadIds.end();
}

void addOutsideModules(norvane_1::ProblemReportStorage& report, std::uint32_t processId) {
    norvane_1::MinidumpModuleMap* map = norvane_1::minidumpAllocModuleMap();
    if (map != nullptr && norvane_1::loadModuleMap(map, processId)) {
        for (std::uint32_t i = 0; i < map->count; ++i) report.addModuleInfo(&map->ranges[i], true);
    }
    norvane_1::minidumpFreeModuleMap(map);
}

AddedStacks addOutsideStacks(norvane_1::ProblemReportStorage& report, std::uint32_t processId,
                             StartingPoints const& startAt) {
    OutsideStacks stacks = collectThreadStacks(processId, startAt);
    AddedStacks added;
    added.error = stacks.error;
    for (ThreadStack& thread : stacks.threads) {
        for (norvane_1::StackFrame& frame : thread.frames) {
            norvane_1::ModuleInfo module;
            if (report.findModule(frame.address, module)) frame.module = fileNameOf(module.FullName);
        }
        report.addContext(thread.registers, thread.threadId);
        report.addStack(thread.frames, thread.threadId);
        if (!thread.frames.empty()) added.threadIds.push_back(thread.threadId);
    }
    return added;
}

}  // namespace kelmur_feedback
