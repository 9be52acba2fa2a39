// "Stack.raw.0x<tid>" and "Stack.clean.0x<tid>" sections. Value forms are
// in value_forms_test.cpp; the sections as written are in the golden report.
#include <norvane_1/problem_report_storage.h>

#include "minidump_problem_report_storage/stack_sections.h"

#include <gtest/gtest.h>

namespace {

using norvane_1::ProblemReportStorage;
using norvane_1::StackFrame;

StackFrame frame(std::uint32_t kind, std::uint64_t slot, std::uint64_t address, std::wstring module = L"") {
    StackFrame f;
    f.kind = kind;
    f.stackAddress = slot;
    f.address = address;
    f.module = std::move(module);
    f.detail1 = L"lost";
    return f;
}

TEST(StackSections, RoundTripKeepsFramesSortedAndDropsDetails) {
    ProblemReportStorage written;
    written.getStackFramesMap()[5] = {frame(0, 3, 30), frame(3, 1, 10, L"a b.dll"), frame(2, 2, 20)};
    written.getStackMap()[5] = {{1, 2}, {3, 4}};
    written.getStackMap()[6] = {};
    ProblemReportStorage read;
    read.fromString(written.toString());
    EXPECT_EQ(written.getStackFramesMap()[5][0].stackAddress, 3u);  // the writer sorts a copy
    auto const& frames = read.getStackFramesMap()[5];
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0].stackAddress, 1u);
    EXPECT_EQ(frames[0].kind, 0u);  // unknown kinds are written as "-"
    EXPECT_EQ(frames[0].module, L"a b.dll");
    EXPECT_EQ(frames[0].detail1, L"");
    EXPECT_EQ(frames[1].kind, 2u);
    EXPECT_EQ(frames[2].kind, 0u);
    EXPECT_EQ(read.getStackMap()[5], (norvane_1::RawStack{{1, 2}, {3, 4}}));
    EXPECT_EQ(read.getStackMap().count(6), 0u);  // an empty raw stack isn't written
}

struct CleanLineCase {
    std::wstring line;
    std::uint32_t kind;
    std::uint64_t slot;
    std::uint64_t address;
    std::wstring module;
};

TEST(StackSections, CleanLinesAreReadColumnByColumn) {
    CleanLineCase const cases[] = {
        {L"+", 2, 0, 0, L""},
        {L"x", 0, 0, 0, L""},
        {L"? | 0x1", 1, 0, 0, L""},
        {L"! | 0x1 | 0x2", 4, 1, 2, L""},
        {L"+ | 0x1 | 0x2 |  m | rest", 2, 1, 2, L" m"},
        {L"+ | 0x1 | 0x2 | mod.dll\r", 2, 1, 2, L"mod.dll\r"},
        {L"+ | 0x1\r | 0x2\r", 2, 1, 2, L""},
    };
    for (auto const& c : cases) {
        norvane_1::RawStackMap raw;
        norvane_1::CleanStackMap clean;
        norvane_1::internal::readStackSections({{L"Stack.clean.0x1", L"\n" + c.line + L"\n"}}, raw, clean);
        auto const& frames = clean[1];
        ASSERT_EQ(frames.size(), 1u) << std::string(c.line.begin(), c.line.end());
        EXPECT_EQ(frames[0].kind, c.kind);
        EXPECT_EQ(frames[0].stackAddress, c.slot);
        EXPECT_EQ(frames[0].address, c.address);
        EXPECT_EQ(frames[0].module, c.module);
    }
}

TEST(StackSections, RawLinesNeedAColonWithTextOnBothSides) {
    norvane_1::RawStackMap raw;
    norvane_1::CleanStackMap clean;
    norvane_1::internal::readStackSections({{L"Stack.raw.0x1", L":0x1\n0x1:\n0x1\n 0x2 : 0x3 \r\n0x2: 0x4\n"}}, raw,
                                           clean);
    EXPECT_EQ(raw[1], (norvane_1::RawStack{{2, 4}}));
}

}  // namespace
