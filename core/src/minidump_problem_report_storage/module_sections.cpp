// "Module000", "Module001", ... sections: one per record of the module list.
// Portable code only.
//
// The position in the list is the only link between a section and a record,
// so the list is read from position 0 up to the first missing name.
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "key_text.h"
#include "module_section_names.h"

#include <iomanip>
#include <sstream>

namespace norvane_1 {
namespace {

using string_traits::addrToString;
using string_traits::stringToAddr;

// "Timestamp" stands twice, and "Checksum" is a key no writer puts in: such a
// line still ends the value above it.
internal::KnownKeys const& moduleKeys() {
    static internal::KnownKeys const keys({L"Base", L"Begin", L"End", L"FullName", L"SymbolName",
                                           L"Timestamp", L"Size", L"Guid", L"Age", L"Timestamp",
                                           L"Checksum"});
    return keys;
}

}  // namespace

std::wstring internal::moduleSectionName(std::size_t position) {
    std::wostringstream name;
    name << L"Module" << std::setfill(L'0') << std::setw(3) << position;
    return name.str();
}

std::wstring ProblemReportStorage::guidToString(Guid const& guid) const {
    std::wostringstream text;
    text << std::hex << std::setfill(L'0') << std::setw(8) << guid.Data1 << L'-' << std::setw(4)
         << guid.Data2 << L'-' << std::setw(4) << guid.Data3 << L'-';
    for (int i = 0; i < 8; ++i) {
        text << std::setw(2) << static_cast<unsigned>(guid.Data4[i]);
        if (i == 1) text << L'-';
    }
    return text.str();
}

Guid ProblemReportStorage::stringToGuid(std::wstring const& text) const {
    Guid guid;
    if (text.size() != 36) return guid;
    std::wistringstream in(text);
    in >> std::hex >> guid.Data1;
    in.get();
    in >> guid.Data2;
    in.get();
    in >> guid.Data3;
    in.get();
    for (int i = 0; i < 8 && in.good(); ++i) {
        std::wstring token;
        in >> std::setw(2) >> token;
        std::wistringstream digits(token);
        unsigned value = 0;
        digits >> std::hex >> value;
        guid.Data4[i] = static_cast<std::uint8_t>(value & 0xFF);
        if (i == 1) in.get();
    }
    return guid;
}

void ProblemReportStorage::processModuleMapToSections() {
    for (std::size_t position = 0; position < m_moduleInfo.size(); ++position) {
        ModuleInfo const& module = m_moduleInfo[position];
        StringMap keys;
        keys[L"Age"] = addrToString(module.Age);
        keys[L"Base"] = addrToString(module.Base);
        keys[L"Begin"] = addrToString(module.Begin);
        keys[L"End"] = addrToString(module.End);
        keys[L"FullName"] = string_traits::encodeString(module.FullName);
        keys[L"Guid"] = guidToString(module.Guid);
        keys[L"Size"] = addrToString(module.Size);
        keys[L"SymbolName"] = string_traits::encodeString(module.SymbolName);
        keys[L"Timestamp"] = addrToString(module.Timestamp);
        m_sections[internal::moduleSectionName(position)] = processMapToSection(keys);
    }
}

void ProblemReportStorage::parseModuleMap() {
    m_moduleInfo.clear();
    m_moduleAddressIndex.clear();
    m_moduleNameIndex.clear();
    if (m_sections.empty()) return;
    for (std::size_t position = 0;; ++position) {
        auto const section = m_sections.find(internal::moduleSectionName(position));
        if (section == m_sections.end()) return;
        StringMap keys;
        moduleKeys().read(section->second, keys);
        ModuleInfo module;
        module.Age = stringToAddr(get(keys, L"Age"));
        module.Base = stringToAddr(get(keys, L"Base"));
        module.Begin = stringToAddr(get(keys, L"Begin"));
        module.End = stringToAddr(get(keys, L"End"));
        module.FullName = string_traits::decodeString(get(keys, L"FullName"));
        module.Guid = stringToGuid(get(keys, L"Guid"));
        module.Size = stringToAddr(get(keys, L"Size"));
        module.SymbolName = string_traits::decodeString(get(keys, L"SymbolName"));
        module.Timestamp = stringToAddr(get(keys, L"Timestamp"));
        m_moduleAddressIndex[module.Begin] = position;
        m_moduleNameIndex[module.FullName] = position;
        m_moduleInfo.push_back(module);
    }
}

}  // namespace norvane_1
