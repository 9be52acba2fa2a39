// The whole report as text: toString() and fromString(). Portable code only.
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "regex_text.h"

namespace norvane_1 {
namespace {

// The sections with a fixed place at the top, in their order. All others
// follow in ascending order of their names, and "CreationLog" comes last.
constexpr wchar_t const* kLeadingSections[] = {
    L"Exception", L"Process", L"Assertion", L"ProcessDump", L"Products",
    L"System",    L"ClientInfo", L"Dump", L"PremortalLog",
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

}  // namespace

std::wstring ProblemReportStorage::toString() {
    // Bring the section map up to date from the records.
    if (isAssertion()) {
        setSection(L"Assertion", processAssertionToString());
    } else if (isException()) {
        setSection(L"Exception", processExceptionToString());
    } else {
        setSection(L"ProcessDump", processProcessDumpToString());
    }
    setSection(L"Dump", processMapToSection(m_dumpValues));
    setSection(L"Products", m_productInfo);
    if (!m_appPropertyPool.empty()) setSection(L"ClientInfo", processPropertiesToString());
    if (!m_premortalLog.empty()) setSection(L"PremortalLog", m_premortalLog);
    processModuleMapToSections();
    processContextsToString();
    processStacksToString();

    StringMap remaining(m_sections);
    std::wstring text;
    for (wchar_t const* name : kLeadingSections) {
        auto const section = remaining.find(name);
        if (section == remaining.end()) continue;
        writeSection(text, section->first, section->second);
        remaining.erase(section);
    }
    for (auto const& section : remaining) {
        if (section.first != kTrailingSection) writeSection(text, section.first, section.second);
    }
    auto const last = remaining.find(kTrailingSection);
    if (last != remaining.end()) writeSection(text, last->first, last->second);
    return text;
}

bool ProblemReportStorage::fromString(std::wstring const& text) {
    // The line feed in front lets the head expression find a head on the
    // first line.
    m_reportText = L"\n" + text;
    std::wstring name;
    std::wstring sectionText;
    auto const end = m_reportText.cend();
    for (auto position = m_reportText.cbegin(); position != end;) {
        position = findNextSection(position, name, sectionText, m_reportText);
        if (!name.empty()) m_sections[name] = sectionText;
    }
    processStringToException(getSection(L"Exception"));
    processStringToAssertion(getSection(L"Assertion"));
    processStringToProcessDump(getSection(L"ProcessDump"));
    m_premortalLog = getSection(L"PremortalLog");
    processSectionToMap(getSection(L"Dump"), m_dumpValues, {});
    m_productInfo = internal::trim(getSection(L"Products"));
    processStringToContexts();
    processStringToStacks();
    parseModuleMap();
    return true;
}

}  // namespace norvane_1
