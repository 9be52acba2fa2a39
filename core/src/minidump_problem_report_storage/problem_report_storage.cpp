// ProblemReportStorage: life cycle, field access, the section map, and the
// members that hand over to the section codecs and to the layer that reads
// files. Portable code only.
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "appended_data.h"
#include "log_directory.h"
#include "logging/logging.h"
#include "problem_sections.h"
#include "report_enrichment.h"
#include "report_progress.h"

#include <vantix_2_18/strings.h>

namespace norvane_1 {

ProblemReportStorage::ProblemReportStorage() = default;
ProblemReportStorage::ProblemReportStorage(ProblemReportStorage const& other) = default;
ProblemReportStorage::~ProblemReportStorage() = default;
ProblemReportStorage& ProblemReportStorage::operator=(ProblemReportStorage const& other) = default;

bool ProblemReportStorage::isException() const { return !m_exception.description.empty(); }
bool ProblemReportStorage::isAssertion() const { return !m_assertion.expression.empty(); }
bool ProblemReportStorage::isProcessDump() const { return !m_processDump.description.empty(); }

std::uint32_t& ProblemReportStorage::getCrashedTid() { return m_crashedTid; }
std::uint32_t& ProblemReportStorage::getCrashedPid() { return m_crashedPid; }
void ProblemReportStorage::setCrashedTid(std::uint32_t const& tid) { m_crashedTid = tid; }
void ProblemReportStorage::setCrashedPid(std::uint32_t const& pid) { m_crashedPid = pid; }
ContextMap& ProblemReportStorage::getContextMap() { return m_contextMap; }
RawStackMap& ProblemReportStorage::getStackMap() { return m_stackMap; }
CleanStackMap& ProblemReportStorage::getStackFramesMap() { return m_stackFramesMap; }
ModuleInfoList& ProblemReportStorage::getModuleInfo() { return m_moduleInfo; }
Exception const& ProblemReportStorage::getException() const { return m_exception; }
Assertion const& ProblemReportStorage::getAssertion() const { return m_assertion; }
ProcessDump const& ProblemReportStorage::getProcessDump() const { return m_processDump; }
std::wstring const& ProblemReportStorage::getFailedProductName() const { return m_failedProductName; }

std::wstring ProblemReportStorage::getSection(std::wstring const& name) { return m_sections[name]; }

void ProblemReportStorage::setSection(std::wstring const& name, std::wstring const& text) {
    if (name.empty()) return;
    m_sections[name] = text;
}

void ProblemReportStorage::setReportPath(std::wstring const& path) {
    if (!path.empty()) m_reportPath = path;
}

wchar_t const* ProblemReportStorage::getReportPath() const {
    return m_reportPath.empty() ? nullptr : m_reportPath.c_str();
}

// Problem records.

void ProblemReportStorage::setException(Exception const& exception) { m_exception = exception; }
void ProblemReportStorage::setAssertion(Assertion const& assertion) { m_assertion = assertion; }
void ProblemReportStorage::setProcessDump(ProcessDump const& processDump) { m_processDump = processDump; }

void ProblemReportStorage::setDumpValue(std::wstring const& key, std::wstring const& value) {
    m_dumpValues[key] = value;
}

std::wstring ProblemReportStorage::getDumpValue(std::wstring const& key) const { return get(m_dumpValues, key); }

void ProblemReportStorage::setProcBitness(bool is32) { m_procBitness = is32 ? 1 : 0; }

int ProblemReportStorage::getProcBitness() {
    if (m_procBitness != -1) return m_procBitness;
    for (auto const& module : m_moduleInfo) {
        if (module.FullName.find(L"bin32") != std::wstring::npos) return m_procBitness = 1;
        if (module.FullName.find(L"bin64") != std::wstring::npos) return m_procBitness = 0;
    }
    return -1;
}

// Product.

std::wstring ProblemReportStorage::detectProductInfo() {
    return internal::detectProductInfo(m_moduleInfo, getReportPath());
}

bool ProblemReportStorage::updateProductInfo() {
    NORVANE_LOG_INFO(log::prsLogger(), L"updateProductInfo: update product info and failed prod name");
    std::wstring const text = detectProductInfo();
    if (text.empty()) return false;
    if (!m_productInfo.empty()) {
        NORVANE_LOG_INFO(log::prsLogger(), L"updateProductInfo: product info already set");
    } else {
        setProductInfo(text);
    }
    if (!m_failedProductName.empty()) {
        NORVANE_LOG_INFO(log::prsLogger(), L"updateProductInfo: failed prod name already set");
    } else {
        setFailedProductName(text);
    }
    return true;
}

void ProblemReportStorage::setProductInfo(std::wstring const& text) {
    std::wstring normalised(text);
    VANTIX_2_18::strings::replace_all(normalised, L"\r\n", L"\n");
    m_productInfo = normalised;
}

std::wstring ProblemReportStorage::getProductInfo() const { return m_productInfo; }

void ProblemReportStorage::setFailedProductName(std::wstring const& productText) {
    m_failedProductName = internal::failedProductName(productText);
}

// Module files.

bool ProblemReportStorage::updateModuleMap() { return internal::readDebugIdentities(m_moduleInfo, getReportPath()); }

// Appended data.

bool ProblemReportStorage::appendCustomSections(wchar_t const* directory) {
    std::wstring const folder = directoryOrLogDirectory(directory);
    if (folder.empty()) return false;
    if (!internal::readCustomSections(folder, m_sections)) return true;
    // A report of a live process has taken in its creation log; the file goes.
    if (isProcessDump()) internal::discardProgressRecords(m_reportPath);
    return true;
}

void ProblemReportStorage::addPremortalLog(std::vector<std::wstring> const& lines) {
    m_premortalLog.clear();
    for (auto const& line : lines) {
        m_premortalLog += line;
        m_premortalLog += L'\n';
    }
}

void ProblemReportStorage::setAppPropertyPool(AppPropertyPool const& pool) {
    if (&pool == &m_appPropertyPool) return;
    m_appPropertyPool = pool;
}

bool ProblemReportStorage::getVMemFootPrint(std::uint64_t& value) {
    if (m_crashedTid == 0 && m_crashedPid == 0) return false;
    return internal::virtualMemoryFootprint(getSection(L"Process"), value);
}

}  // namespace norvane_1
