// "Context.0x<tid>" sections. Value forms are in value_forms_test.cpp; the
// section as written, key order and digits, in the golden report.
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/context_sections.h"

#include <gtest/gtest.h>

namespace {

using namespace norvane_1;

// Each register has a value of its own, so that one written or read under
// another's key shows.
TEST(ContextSections, EveryRegisterIsWrittenUnderItsOwnKeyAndReadBack) {
    std::pair<wchar_t const*, std::uint64_t Context::*> const registers[] = {
        {L"EAX", &Context::EAX}, {L"EBX", &Context::EBX}, {L"ECX", &Context::ECX}, {L"EDX", &Context::EDX},
        {L"ESI", &Context::ESI}, {L"EDI", &Context::EDI}, {L"EBP", &Context::EBP}, {L"ESP", &Context::ESP},
        {L"EIP", &Context::EIP}, {L"R8", &Context::R8},   {L"R9", &Context::R9},   {L"R10", &Context::R10},
        {L"R11", &Context::R11}, {L"R12", &Context::R12}, {L"R13", &Context::R13}, {L"R14", &Context::R14},
        {L"R15", &Context::R15}};
    Context c;
    std::uint64_t value = 0x7ff6a1b23c40ULL;
    for (auto const& reg : registers) c.*reg.second = value++;
    StringMap sections;
    internal::writeContextSections({{0x19e8, c}}, sections);
    StringMap keys;
    processSectionToMap(sections[L"Context.0x000019e8"], keys, {});
    EXPECT_EQ(keys.size(), 17u);
    ContextMap read;
    internal::readContextSections(sections, read);
    for (auto const& reg : registers) {
        EXPECT_EQ(keys[reg.first], string_traits::addrToString(c.*reg.second)) << reg.first;
        EXPECT_EQ(read[0x19e8].*reg.second, c.*reg.second) << reg.first;
    }
}

}  // namespace
