// The whole report as text: the sections in their order, and toString()
// and fromString(), which bring the records to sections and back. Portable
// code only; no I/O.
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "appended_data.h"
#include "context_sections.h"
#include "module_sections.h"
#include "problem_sections.h"
#include "regex_text.h"
#include "section_text.h"
#include "stack_sections.h"

namespace norvane_1 {
namespace internal {
namespace {

// The sections with a fixed place at the top, in their order. All others
// follow in ascending order of their names, and "CreationLog" comes last.
constexpr wchar_t const* kLeadingSections[] = {
    L"Exception", L"Process",    L"Assertion", L"ProcessDump",  L"Products",
    L"System",    L"ClientInfo", L"Dump",      L"PremortalLog",
};
constexpr wchar_t kTrailingSection[] = L"CreationLog";

// "[Name]", LF, the text, LF, LF. Empty sections are not written at all.
void writeSection(std::wstring& out, std::wstring const& name, std::wstring const& text) {
    if (text.empty()) return;
    out += L'[';
    out += name;
    out += L"]\n";
    out += text;
    out += L"\n\n";
}

bool hasFixedPlace(std::wstring const& name) {
    if (name == kTrailingSection) return true;
    for (wchar_t const* leading : kLeadingSections) {
        if (name == leading) return true;
    }
    return false;
}

// An upper bound of the text's length, so that it is built without moves.
std::size_t writtenSize(StringMap const& sections) {
    std::size_t size = 0;
    for (auto const& section : sections) size += section.first.size() + section.second.size() + 5;
    return size;
}

}  // namespace

std::wstring joinSections(StringMap const& sections) {
    std::wstring text;
    text.reserve(writtenSize(sections));
    for (wchar_t const* name : kLeadingSections) {
        auto const section = sections.find(name);
        if (section != sections.end()) writeSection(text, section->first, section->second);
    }
    for (auto const& section : sections) {
        if (!hasFixedPlace(section.first)) writeSection(text, section.first, section.second);
    }
    auto const last = sections.find(kTrailingSection);
    if (last != sections.end()) writeSection(text, last->first, last->second);
    return text;
}

}  // namespace internal

std::wstring ProblemReportStorage::toString() {
    // Bring the section map up to date from the records.
    internal::ProblemFacts const facts{m_crashedPid, m_crashedTid, m_procBitness, m_failedProductName, m_reportPath};
    if (isAssertion()) {
        setSection(L"Assertion", internal::assertionSectionText(m_assertion, facts));
    } else if (isException()) {
        setSection(L"Exception", internal::exceptionSectionText(m_exception, facts));
    } else {
        setSection(L"ProcessDump", internal::processDumpSectionText(m_processDump, facts));
    }
    setSection(L"Dump", processMapToSection(m_dumpValues));
    setSection(L"Products", m_productInfo);
    if (!m_appPropertyPool.empty()) setSection(L"ClientInfo", internal::propertiesSectionText(m_appPropertyPool));
    if (!m_premortalLog.empty()) setSection(L"PremortalLog", m_premortalLog);
    internal::writeModuleSections(m_moduleInfo, m_sections);
    internal::writeContextSections(m_contextMap, m_sections);
    internal::writeStackSections(m_stackMap, m_stackFramesMap, m_sections);
    return internal::joinSections(m_sections);
}

bool ProblemReportStorage::fromString(std::wstring const& text) {
    internal::splitSections(text, m_sections);
    readProblemSections();
    m_premortalLog = getSection(L"PremortalLog");
    processSectionToMap(getSection(L"Dump"), m_dumpValues, {});
    m_productInfo = internal::trim(getSection(L"Products"));
    internal::readContextSections(m_sections, m_contextMap);
    internal::readStackSections(m_sections, m_stackMap, m_stackFramesMap);
    m_moduleInfo = internal::readModuleSections(m_sections);
    indexModules();
    return true;
}

// The facts the problem sections share are kept even when a damaged number
// stops a reader: what was read up to there stays.
void ProblemReportStorage::readProblemSections() {
    internal::ProblemFacts facts{m_crashedPid, m_crashedTid, m_procBitness, m_failedProductName, m_reportPath};
    auto const keep = [this, &facts] {
        m_crashedPid = facts.crashedPid;
        m_crashedTid = facts.crashedTid;
        m_procBitness = facts.bitness;
        m_failedProductName = facts.failedProductName;
        m_reportPath = facts.reportPath;
    };
    try {
        internal::readExceptionSection(getSection(L"Exception"), m_exception, facts);
        internal::readAssertionSection(getSection(L"Assertion"), m_assertion, facts);
        internal::readProcessDumpSection(getSection(L"ProcessDump"), m_processDump, facts);
    } catch (...) {
        keep();
        throw;
    }
    keep();
}

}  // namespace norvane_1
