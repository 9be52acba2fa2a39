// "Context.0x<tid>" sections. Value forms are in value_forms_test.cpp.
#include "minidump_problem_report_storage/context_sections.h"

#include <gtest/gtest.h>

namespace {

using namespace norvane_1;

// Each register has a value of its own, so that one written or read under
// another's key shows.
TEST(ContextSections, EveryRegisterIsWrittenUnderItsOwnKeyAndReadBack) {
    Context c;
    std::uint64_t Context::*const registers[] = {
        &Context::EAX, &Context::EBX, &Context::ECX, &Context::EDX, &Context::ESI, &Context::EDI,
        &Context::EBP, &Context::ESP, &Context::EIP, &Context::R8,  &Context::R9,  &Context::R10,
        &Context::R11, &Context::R12, &Context::R13, &Context::R14, &Context::R15};
    std::uint64_t value = 0x1;
    for (auto field : registers) c.*field = value++;
    c.EIP = 0x7ff6a1b23c40ULL;
    c.R15 = ~0ULL;
    StringMap sections;
    internal::writeContextSections({{0x19e8, c}}, sections);
    EXPECT_EQ(sections[L"Context.0x000019e8"],
              L"EAX: 0x0000000000000001\n"
              L"EBP: 0x0000000000000007\n"
              L"EBX: 0x0000000000000002\n"
              L"ECX: 0x0000000000000003\n"
              L"EDI: 0x0000000000000006\n"
              L"EDX: 0x0000000000000004\n"
              L"EIP: 0x00007ff6a1b23c40\n"
              L"ESI: 0x0000000000000005\n"
              L"ESP: 0x0000000000000008\n"
              L"R10: 0x000000000000000c\n"
              L"R11: 0x000000000000000d\n"
              L"R12: 0x000000000000000e\n"
              L"R13: 0x000000000000000f\n"
              L"R14: 0x0000000000000010\n"
              L"R15: 0xffffffffffffffff\n"
              L"R8: 0x000000000000000a\n"
              L"R9: 0x000000000000000b\n");

    ContextMap read;
    internal::readContextSections(sections, read);
    ASSERT_EQ(read.size(), 1u);
    for (auto field : registers) EXPECT_EQ(read[0x19e8].*field, c.*field);
}

}  // namespace
