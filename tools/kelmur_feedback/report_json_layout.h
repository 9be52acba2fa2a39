// Where each section of a report goes in its JSON (report_json.h): the
// names and value forms that the writer and the reader share.
#pragma once

#include "report_json_sections.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelmur_feedback {
namespace report_json_layout {

struct NamedSection {
    wchar_t const* section;
    char const* member;
};

// Sections of key lines with a member of their own.
extern NamedSection const kKeySections[6];
// Logs, under "logs".
extern NamedSection const kLogs[2];
// Every member of the top level.
extern char const* const kMembers[12];

constexpr std::wstring_view kContextPrefix = L"Context.";
constexpr std::wstring_view kCleanStackPrefix = L"Stack.clean.";
constexpr std::wstring_view kRawStackPrefix = L"Stack.raw.";

KeyForms const& problemForms();
KeyForms const& moduleForms();
// The forms of a section of kKeySections.
KeyForms formsOf(std::wstring const& section);

// "Module000", "Module001", ...
std::wstring moduleSectionName(std::size_t position);
// "0x000019e8", as section names carry thread ids.
std::wstring threadSuffix(std::uint32_t thread);
// The thread of a section named `prefix` and the thread id as the library
// writes it; nothing for any other name.
std::optional<std::uint32_t> threadOf(std::wstring const& name, std::wstring_view prefix);

}  // namespace report_json_layout
}  // namespace kelmur_feedback
