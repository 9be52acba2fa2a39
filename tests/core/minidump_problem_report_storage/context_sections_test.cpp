// "Context.0x<tid>" sections.
#include "report_probe.h"

#include <gtest/gtest.h>

namespace {

using norvane_1::Context;
using norvane_test::ReportProbe;

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
    ReportProbe report;
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
    ReportProbe written;
    Context c;
    std::uint64_t value = 0x0123456789abcdefULL;
    for (auto* field : {&c.EAX, &c.EBX, &c.ECX, &c.EDX, &c.ESI, &c.EDI, &c.EBP, &c.ESP, &c.EIP,
                        &c.R8, &c.R9, &c.R10, &c.R11, &c.R12, &c.R13, &c.R14, &c.R15}) {
        *field = value;
        value = value * 6364136223846793005ULL + 1442695040888963407ULL;
    }
    written.getContextMap()[7] = c;
    written.getContextMap()[0xffffffffu] = exampleContext();
    ReportProbe read;
    read.fromString(written.toString());
    ASSERT_EQ(read.getContextMap().size(), 2u);
    expectSameRegisters(read.getContextMap()[7], c);
    expectSameRegisters(read.getContextMap()[0xffffffffu], exampleContext());
}

TEST(ContextSections, ThreadIdComesFromTheNameAfterTheFirstDot) {
    struct { std::wstring name; std::uint32_t tid; } const cases[] = {
        {L"Context", 0}, {L"Context.", 0}, {L"Context.1a2b", 0x1a2b}, {L"Context.0x00001a2b", 0x1a2b},
        {L"ContextX.0x5", 5}, {L"Context.0x5.0x6", 0x50006},  // "." and "x" count as 0
    };
    for (auto const& c : cases) {
        ReportProbe report;
        report.setSection(c.name, L"EIP: 0x10\nUnknown: 1\n");
        report.processStringToContexts();
        ASSERT_EQ(report.getContextMap().count(c.tid), 1u) << std::string(c.name.begin(), c.name.end());
        EXPECT_EQ(report.getContextMap()[c.tid].EIP, 16u);
        EXPECT_EQ(report.getContextMap()[c.tid].EAX, 0u);
    }
}

TEST(ContextSections, LastSortedNameWinsAndOthersStay) {
    ReportProbe report;
    report.getContextMap()[9].EAX = 99;
    report.setSection(L"Context.0x00000001", L"EAX: 0x1\n");
    report.setSection(L"Context.1", L"EAX: 0x2\n");
    report.processStringToContexts();
    EXPECT_EQ(report.getContextMap()[1].EAX, 2u);
    EXPECT_EQ(report.getContextMap()[9].EAX, 99u);
}

}  // namespace
