// "Context.0x<thread id>" sections: the 17 saved registers of a thread.
// Portable code only; no I/O.
#include "context_sections.h"

#include <norvane_1/string_traits.h>

#include "hex_text.h"
#include "regex_text.h"

#include <string_view>

namespace norvane_1 {
namespace internal {
namespace {

struct RegisterKey {
    wchar_t const* name;
    std::uint64_t Context::*field;
};

// In the ascending key order of key text, so the section can be written
// line by line: "EBP" before "EBX", "R10".."R15" before "R8".
constexpr RegisterKey kRegisters[] = {
    {L"EAX", &Context::EAX}, {L"EBP", &Context::EBP}, {L"EBX", &Context::EBX}, {L"ECX", &Context::ECX},
    {L"EDI", &Context::EDI}, {L"EDX", &Context::EDX}, {L"EIP", &Context::EIP}, {L"ESI", &Context::ESI},
    {L"ESP", &Context::ESP}, {L"R10", &Context::R10}, {L"R11", &Context::R11}, {L"R12", &Context::R12},
    {L"R13", &Context::R13}, {L"R14", &Context::R14}, {L"R15", &Context::R15}, {L"R8", &Context::R8},
    {L"R9", &Context::R9},
};

constexpr std::wstring_view kPrefix = L"Context";

std::wstring contextToKeyText(Context const& context) {
    std::wstring text;
    text.reserve(sizeof(kRegisters) / sizeof(kRegisters[0]) * 24);
    for (auto const& reg : kRegisters) {
        text += reg.name;
        text += L": ";
        appendAddress(text, context.*reg.field);
        text += L'\n';
    }
    return text;
}

// "Context" alone, or with a dot that is first or last, names thread 0.
std::uint32_t threadIdOfSection(std::wstring const& name) {
    auto const dot = name.find(L'.');
    if (dot == std::wstring::npos || dot == 0 || dot + 1 == name.size()) return 0;
    return parseHex32(trim(name.substr(dot + 1)));
}

}  // namespace

void writeContextSections(ContextMap const& contexts, StringMap& sections) {
    for (auto const& entry : contexts) {
        sections[std::wstring(kPrefix) + L"." + threadIdToString(entry.first)] = contextToKeyText(entry.second);
    }
}

void readContextSections(StringMap const& sections, ContextMap& contexts) {
    for (auto const& section : sections) {
        if (section.first.compare(0, kPrefix.size(), kPrefix) != 0) continue;
        StringMap keys;
        processSectionToMap(section.second, keys, {});
        Context context;
        for (auto const& reg : kRegisters) context.*reg.field = parseHex64(get(keys, reg.name));
        contexts[threadIdOfSection(section.first)] = context;
    }
}

}  // namespace internal
}  // namespace norvane_1
