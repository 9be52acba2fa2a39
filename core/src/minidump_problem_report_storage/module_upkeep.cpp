// Keeping the module list of a report: pruning it to the modules the stacks
// pass through, and finding a module by address or name. Portable code only.
#include <norvane_1/module_map.h>
#include <norvane_1/problem_report_storage.h>

#include "logging/logging.h"
#include "module_sections.h"
#include "report_progress.h"

#include <gavrel2/path.h>

#include <algorithm>
#include <iterator>

namespace norvane_1 {
namespace {

bool holds(ModuleInfo const& module, std::uint64_t address) { return address >= module.Base && address < module.End; }

// Does any clean frame or raw return address lie in the module?
bool stacksPassThrough(ModuleInfo const& module, CleanStackMap const& clean, RawStackMap const& raw) {
    for (auto const& thread : clean) {
        for (auto const& frame : thread.second) {
            if (holds(module, frame.address)) return true;
        }
    }
    for (auto const& thread : raw) {
        for (auto const& slot : thread.second) {
            if (holds(module, slot.second)) return true;
        }
    }
    return false;
}

// The first module whose Base..End, End included, holds the address; an
// empty path if none does.
gavrel2::path_t modulePathOf(ModuleInfoList const& modules, std::uint64_t address) {
    for (auto const& module : modules) {
        if (module.Base <= address && module.End >= address) return gavrel2::path_t(module.FullName);
    }
    return gavrel2::path_t();
}

}  // namespace

void ProblemReportStorage::clearModuleInfo() {
    for (std::size_t position = 0; position < m_moduleInfo.size(); ++position) {
        m_sections.erase(internal::moduleSectionName(position));
    }
    m_moduleInfo.clear();
    m_moduleAddressIndex.clear();
    m_moduleNameIndex.clear();
}

void ProblemReportStorage::addModuleInfo(MinidumpAddressRange const* range, bool skipKnown) {
    if (range == nullptr) return;
    std::wstring const name = range->name ? std::wstring(range->name) : std::wstring();
    if (skipKnown && m_moduleNameIndex.count(name) != 0 && m_moduleAddressIndex.count(range->begin) != 0) return;
    ModuleInfo module;
    module.FullName = name;
    module.Base = range->base;
    module.Begin = range->begin;
    module.End = range->end;
    std::uint64_t const position = m_moduleInfo.size();
    m_moduleAddressIndex[range->begin] = position;
    m_moduleNameIndex[name] = position;
    m_moduleInfo.push_back(module);
}

bool ProblemReportStorage::SyncModuleMapWithStackMap() {
    auto& logger = log::prsLogger();
    NORVANE_LOG_INFO(logger, L"Sync-up module map with current stack map");
    internal::recordProgress("norvane_1::ProblemReportStorage::SyncModuleMapWithStackMap",
                             L"Sync-up module map with current stack map", getReportPath());
    if (m_stackFramesMap.empty() && m_stackMap.empty()) {
        NORVANE_LOG_ERROR(logger, L"Empty stack maps, exit");
        return false;
    }
    NORVANE_LOG_INFO(logger, L"Input module map size: " << m_moduleInfo.size());
    std::size_t const before = m_moduleInfo.size();
    auto const kept = std::remove_if(m_moduleInfo.begin(), m_moduleInfo.end(), [this](ModuleInfo const& module) {
        return !stacksPassThrough(module, m_stackFramesMap, m_stackMap);
    });
    m_moduleInfo.erase(kept, m_moduleInfo.end());
    forgetModulesFrom(m_moduleInfo.size(), before);
    NORVANE_LOG_INFO(logger, L"Output module map size: " << m_moduleInfo.size());
    return true;
}

// After records left the list: the indexes are made anew from the positions
// that remain, and the sections of the positions that are gone are dropped
// (toString writes the others from the records).
void ProblemReportStorage::forgetModulesFrom(std::size_t count, std::size_t formerCount) {
    for (std::size_t position = count; position < formerCount; ++position) {
        m_sections.erase(internal::moduleSectionName(position));
    }
    indexModules();
}

// Of records with the same Begin or FullName, the later position is indexed.
void ProblemReportStorage::indexModules() {
    m_moduleAddressIndex.clear();
    m_moduleNameIndex.clear();
    for (std::size_t position = 0; position < m_moduleInfo.size(); ++position) {
        m_moduleAddressIndex[m_moduleInfo[position].Begin] = position;
        m_moduleNameIndex[m_moduleInfo[position].FullName] = position;
    }
}

bool ProblemReportStorage::findModule(std::uint64_t address, ModuleInfo& module) const {
    if (m_moduleInfo.empty()) return false;
    auto above = m_moduleAddressIndex.upper_bound(address);
    if (above == m_moduleAddressIndex.begin()) return false;
    ModuleInfo const& candidate = m_moduleInfo[static_cast<std::size_t>(std::prev(above)->second)];
    if (!holds(candidate, address)) return false;
    module = candidate;
    return true;
}

bool ProblemReportStorage::findModule(std::wstring const& name, ModuleInfo& module) const {
    if (m_moduleInfo.empty()) return false;
    auto const found = m_moduleNameIndex.find(name);
    if (found == m_moduleNameIndex.end()) return false;
    module = m_moduleInfo[static_cast<std::size_t>(found->second)];
    return true;
}

void ProblemReportStorage::updateExceptionSection() {
    if (m_exception.address == 0) return;
    m_exception.module = modulePathOf(m_moduleInfo, m_exception.address).get_leaf();
}

}  // namespace norvane_1
