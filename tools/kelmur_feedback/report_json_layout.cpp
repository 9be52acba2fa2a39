#include "report_json_layout.h"

#include <cstdio>

namespace kelmur_feedback {
namespace report_json_layout {

NamedSection const kKeySections[6] = {{L"Process", "process"}, {L"Products", "products"},
                                      {L"System", "system"},   {L"ClientInfo", "clientInfo"},
                                      {L"Dump", "dump"},       {L"UncaughtException", "uncaughtException"}};
NamedSection const kLogs[2] = {{L"PremortalLog", "premortal"}, {L"CreationLog", "creation"}};
char const* const kMembers[12] = {"problem",           "process", "products", "system", "clientInfo", "dump",
                                  "uncaughtException", "modules", "contexts", "stacks", "logs",       "sections"};

KeyForms const& problemForms() {
    static KeyForms const forms{{L"Description", L"Module", L"Expression", L"File", L"Command line", L"Executable"},
                                {L"CrashedPID", L"CrashedTID", L"Line", L"ProcessBitness"}};
    return forms;
}

KeyForms const& moduleForms() {
    static KeyForms const forms{{L"FullName", L"SymbolName"}, {}};
    return forms;
}

KeyForms formsOf(std::wstring const& section) {
    if (section == L"UncaughtException") return {{L"Type", L"What"}, {}};
    return {};
}

std::wstring moduleSectionName(std::size_t position) {
    wchar_t name[32];
    std::swprintf(name, sizeof name / sizeof name[0], L"Module%03zu", position);
    return name;
}

std::wstring threadSuffix(std::uint32_t thread) {
    wchar_t text[16];
    std::swprintf(text, sizeof text / sizeof text[0], L"0x%08x", static_cast<unsigned>(thread));
    return text;
}

std::optional<std::uint32_t> threadOf(std::wstring const& name, std::wstring_view prefix) {
    if (name.compare(0, prefix.size(), prefix) != 0) return std::nullopt;
    std::wstring const suffix = name.substr(prefix.size());
    if (suffix.size() != 10 || suffix.compare(0, 2, L"0x") != 0) return std::nullopt;
    std::uint32_t thread = 0;
    for (wchar_t c : suffix.substr(2)) {
        bool const digit = c >= L'0' && c <= L'9';
        if (!digit && !(c >= L'a' && c <= L'f')) return std::nullopt;
        thread = thread * 16 + static_cast<std::uint32_t>(digit ? c - L'0' : c - L'a' + 10);
    }
    return thread;
}

}  // namespace report_json_layout
}  // namespace kelmur_feedback
