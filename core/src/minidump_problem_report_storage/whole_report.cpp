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

    std::wstring text;
    text.reserve(writtenSize(m_sections));
    for (wchar_t const* name : kLeadingSections) {
        auto const section = m_sections.find(name);
        if (section != m_sections.end()) writeSection(text, section->first, section->second);
    }
    for (auto const& section : m_sections) {
        if (!hasFixedPlace(section.first)) writeSection(text, section.first, section.second);
    }
    auto const last = m_sections.find(kTrailingSection);
    if (last != m_sections.end()) writeSection(text, last->first, last->second);
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
        if (!name.empty()) m_sections[name] = std::move(sectionText);
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
