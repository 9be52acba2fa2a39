// ProblemReportStorage: life cycle, field access and the section map.
// Portable code only.
#include <norvane_1/problem_report_storage.h>

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

std::wstring ProblemReportStorage::getSection(std::wstring const& name) {
    return m_sections[name];
}

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

}  // namespace norvane_1
