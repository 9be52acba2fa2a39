// "Context.0x<tid>" sections. Value forms are in value_forms_test.cpp.
#include <norvane_1/problem_report_storage.h>

#include <gtest/gtest.h>

namespace {

using norvane_1::Context;
using norvane_1::ProblemReportStorage;

Context exampleContext() {
    Context c;
    c.EAX = 0;
    c.EBP = 0x12f8a0;
    c.EBX = 0x4a1d30;
    c.ECX = 0x7ff6a1b23c40ULL;
    c.EDI = 1;
    c.EDX = 0x10;
    c.EIP = 0x7ff6a1b23c40ULL;
    c.ESI = 0x4a1d00;
    c.ESP = 0x12f7a0;
    c.R11 = 0x246;
    c.R8 = 0x12f6e8;
    c.R9 = 0x12f7b0;
    return c;
}

void expectSameRegisters(Context const& a, Context const& b) {
    std::uint64_t const Context::*const fields[] = {
        &Context::EAX, &Context::EBX, &Context::ECX, &Context::EDX, &Context::ESI, &Context::EDI,
        &Context::EBP, &Context::ESP, &Context::EIP, &Context::R8,  &Context::R9,  &Context::R10,
        &Context::R11, &Context::R12, &Context::R13, &Context::R14, &Context::R15};
    for (auto field : fields) EXPECT_EQ(a.*field, b.*field);
}

TEST(ContextSections, ExampleIsWrittenExactly) {
    ProblemReportStorage report;
    report.getContextMap()[0x19e8] = exampleContext();
    std::wstring const text = report.toString();
    EXPECT_NE(text.find(L"[Context.0x000019e8]\n"
                        L"EAX: 0x0000000000000000\n"
                        L"EBP: 0x000000000012f8a0\n"
                        L"EBX: 0x00000000004a1d30\n"
                        L"ECX: 0x00007ff6a1b23c40\n"
                        L"EDI: 0x0000000000000001\n"
                        L"EDX: 0x0000000000000010\n"
                        L"EIP: 0x00007ff6a1b23c40\n"
                        L"ESI: 0x00000000004a1d00\n"
                        L"ESP: 0x000000000012f7a0\n"
                        L"R10: 0x0000000000000000\n"
                        L"R11: 0x0000000000000246\n"
                        L"R12: 0x0000000000000000\n"
                        L"R13: 0x0000000000000000\n"
                        L"R14: 0x0000000000000000\n"
                        L"R15: 0x0000000000000000\n"
                        L"R8: 0x000000000012f6e8\n"
                        L"R9: 0x000000000012f7b0\n"
                        L"\n\n"),
              std::wstring::npos)
        << std::string(text.begin(), text.end());
}

TEST(ContextSections, EveryRegisterSurvivesARoundTrip) {
    ProblemReportStorage written;
    Context c;
    std::uint64_t value = 0x0123456789abcdefULL;
    for (auto* field : {&c.EAX, &c.EBX, &c.ECX, &c.EDX, &c.ESI, &c.EDI, &c.EBP, &c.ESP, &c.EIP,
                        &c.R8, &c.R9, &c.R10, &c.R11, &c.R12, &c.R13, &c.R14, &c.R15}) {
        *field = value;
        value = value * 6364136223846793005ULL + 1442695040888963407ULL;
    }
    written.getContextMap()[7] = c;
    written.getContextMap()[0xffffffffu] = exampleContext();
    ProblemReportStorage read;
    read.fromString(written.toString());
    ASSERT_EQ(read.getContextMap().size(), 2u);
    expectSameRegisters(read.getContextMap()[7], c);
    expectSameRegisters(read.getContextMap()[0xffffffffu], exampleContext());
}

}  // namespace
