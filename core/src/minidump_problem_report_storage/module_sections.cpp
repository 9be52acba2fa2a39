// "Module000", "Module001", ... sections: one per record of the module list.
// Portable code only; no I/O.
//
// The position in the list is the only link between a section and a record,
// so the list is read from position 0 up to the first missing name.
#include "module_sections.h"

#include <norvane_1/string_traits.h>

#include "key_text.h"

#include <iomanip>
#include <sstream>

namespace norvane_1 {
namespace internal {
namespace {

using string_traits::addrToString;
using string_traits::stringToAddr;

// "Timestamp" stands twice, and "Checksum" is a key no writer puts in: such a
// line still ends the value above it.
KnownKeys const& moduleKeys() {
    static KnownKeys const keys({L"Base", L"Begin", L"End", L"FullName", L"SymbolName", L"Timestamp", L"Size", L"Guid",
                                 L"Age", L"Timestamp", L"Checksum"});
    return keys;
}

}  // namespace

std::wstring moduleSectionName(std::size_t position) {
    std::wostringstream name;
    name << L"Module" << std::setfill(L'0') << std::setw(3) << position;
    return name.str();
}

std::wstring guidToString(Guid const& guid) {
    std::wostringstream text;
    text << std::hex << std::setfill(L'0') << std::setw(8) << guid.Data1 << L'-' << std::setw(4) << guid.Data2 << L'-'
         << std::setw(4) << guid.Data3 << L'-';
    for (int i = 0; i < 8; ++i) {
        text << std::setw(2) << static_cast<unsigned>(guid.Data4[i]);
        if (i == 1) text << L'-';
    }
    return text.str();
}

Guid stringToGuid(std::wstring const& text) {
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

void writeModuleSections(ModuleInfoList const& modules, StringMap& sections) {
    for (std::size_t position = 0; position < modules.size(); ++position) {
        ModuleInfo const& module = modules[position];
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
        sections[moduleSectionName(position)] = processMapToSection(keys);
    }
}

ModuleInfoList readModuleSections(StringMap const& sections) {
    ModuleInfoList modules;
    for (std::size_t position = 0;; ++position) {
        auto const section = sections.find(moduleSectionName(position));
        if (section == sections.end()) return modules;
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
        modules.push_back(module);
    }
}

}  // namespace internal
}  // namespace norvane_1
