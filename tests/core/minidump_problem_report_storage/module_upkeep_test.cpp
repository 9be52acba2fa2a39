// Pruning the module list to what the stacks pass through, and lookups.
#include <norvane_1/module_map.h>
#include <norvane_1/problem_report_storage.h>

#include "test_environment.h"

#include <gtest/gtest.h>

namespace {

using norvane_1::ModuleInfo;
using norvane_1::ProblemReportStorage;

// A module path as the platform writes it, so that its leaf can be cut off.
std::wstring modulePath(wchar_t const* file) {
    bool const windows = std::filesystem::path::preferred_separator == '\\';
    return std::wstring(windows ? L"C:\\x\\" : L"/x/") + file;
}

ModuleInfo module(std::wstring name, std::uint64_t base, std::uint64_t begin, std::uint64_t end) {
    ModuleInfo m;
    m.FullName = std::move(name);
    m.Base = base;
    m.Begin = begin;
    m.End = end;
    return m;
}

// A report whose module list and indexes come from its own text, as after a
// read-back; by default a.dll 0x1000-0x2000, b.dll 0x3000 (code from
// 0x3800)-0x4000, c.dll 0x5000-0x6000.
void loadModules(ProblemReportStorage& report,
                 norvane_1::ModuleInfoList modules = {module(modulePath(L"a.dll"), 0x1000, 0x1000, 0x2000),
                                                      module(modulePath(L"b.dll"), 0x3000, 0x3800, 0x4000),
                                                      module(modulePath(L"c.dll"), 0x5000, 0x5000, 0x6000)}) {
    ProblemReportStorage written;
    written.getModuleInfo() = std::move(modules);
    report.fromString(written.toString());
}

class ModuleUpkeep : public ::testing::Test {
protected:
    norvane_test::ScratchDirectory logs{"module-upkeep"};
    norvane_test::ScopedVariable logDirectory{"NORVANE_LOG_DIR", logs.path().string()};
};

TEST_F(ModuleUpkeep, PruningKeepsExactlyTheModulesTheStacksPassThrough) {
    struct Case {
        char const* what;
        std::vector<std::uint64_t> cleanAddresses;
        std::vector<std::uint64_t> rawValues;
        std::vector<std::wstring> kept;
    };
    Case const cases[] = {
        {"clean frame in a", {0x1800}, {}, {modulePath(L"a.dll")}},
        {"raw value in c", {}, {0x5fff}, {modulePath(L"c.dll")}},
        {"End itself keeps nothing", {0x2000}, {0x6000}, {}},
        {"Base counts, not Begin", {0x3100}, {}, {modulePath(L"b.dll")}},
        {"both kinds", {0x1000}, {0x3fff}, {modulePath(L"a.dll"), modulePath(L"b.dll")}},
        {"no stacks: nothing pruned", {}, {}, {modulePath(L"a.dll"), modulePath(L"b.dll"), modulePath(L"c.dll")}},
    };
    for (auto const& c : cases) {
        ProblemReportStorage report;
        loadModules(report);
        for (auto address : c.cleanAddresses) {
            norvane_1::StackFrame frame;
            frame.address = address;
            report.getStackFramesMap()[1].push_back(frame);
        }
        std::uint64_t slot = 0x100;
        for (auto value : c.rawValues) report.getStackMap()[2][slot++] = value;
        EXPECT_EQ(report.SyncModuleMapWithStackMap(), !c.cleanAddresses.empty() || !c.rawValues.empty()) << c.what;
        // What is left is still found by an address inside it and by its name.
        std::vector<std::wstring> names;
        for (auto const& kept : report.getModuleInfo()) {
            names.push_back(kept.FullName);
            ModuleInfo found;
            EXPECT_TRUE(report.findModule(kept.Begin, found)) << c.what;
            EXPECT_EQ(found, kept);
            EXPECT_TRUE(report.findModule(kept.FullName, found)) << c.what;
        }
        EXPECT_EQ(names, c.kept) << c.what;
    }
}

// A module with two code ranges has two records of one name: the one whose
// range a stack passes through stays, the other goes, and the indexes and
// sections follow.
TEST_F(ModuleUpkeep, PruningKeepsTheRangeOfAModuleThatAStackPassesThrough) {
    ProblemReportStorage report;
    loadModules(report, {module(modulePath(L"a.dll"), 0x1000, 0x1000, 0x1800),
                         module(modulePath(L"a.dll"), 0x1000, 0x1900, 0x2000),
                         module(modulePath(L"c.dll"), 0x5000, 0x5000, 0x6000)});
    report.getStackMap()[1][0x100] = 0x1950;  // past the first range's End, in the second
    ASSERT_TRUE(report.SyncModuleMapWithStackMap());
    ASSERT_EQ(report.getModuleInfo().size(), 1u);
    EXPECT_EQ(report.getModuleInfo()[0].Begin, 0x1900u);
    ModuleInfo found;
    EXPECT_TRUE(report.findModule(0x1950, found));
    EXPECT_TRUE(report.findModule(modulePath(L"a.dll"), found));
    EXPECT_FALSE(report.findModule(0x5100, found));
    std::wstring const text = report.toString();
    EXPECT_EQ(text.find(L"[Module001]"), std::wstring::npos) << "a section of a record that is gone stays";
}

// The module that holds the exception's address: from its Base up to its
// End, End included. An address of 0 leaves the module as it was.
TEST_F(ModuleUpkeep, ExceptionModuleIsNamedByItsAddress) {
    struct {
        std::uint64_t address;
        wchar_t const* module;
    } const cases[] = {
        {0x5100, L"c.dll"}, {0x2000, L"a.dll"}, {0x3100, L"b.dll"}, {0x9000, L""}, {0, L"old"},
    };
    for (auto const& c : cases) {
        ProblemReportStorage report;
        loadModules(report);
        norvane_1::Exception e;
        e.description = L"X";
        e.address = c.address;
        e.module = L"old";
        report.setException(e);
        report.updateExceptionSection();
        EXPECT_EQ(report.getException().module, c.module) << std::hex << c.address;
    }
}

TEST_F(ModuleUpkeep, RangesOfAModuleMapBecomeRecords) {
    ProblemReportStorage report;
    std::wstring name = modulePath(L"a.dll");
    norvane_1::MinidumpAddressRange range{&name[0], 0x1000, 0x1100, 0x1800, 0};
    report.addModuleInfo(&range, true);
    report.addModuleInfo(&range, true);  // name and begin known: passed over
    ASSERT_EQ(report.getModuleInfo().size(), 1u);
    range.begin = 0x1900;  // a known name at a new begin is taken
    range.end = 0x2000;
    report.addModuleInfo(&range, true);
    report.addModuleInfo(&range, false);  // without the test, always appended
    report.addModuleInfo(nullptr, false);
    ASSERT_EQ(report.getModuleInfo().size(), 3u);
    EXPECT_EQ(report.getModuleInfo()[0].Base, 0x1000u);
    EXPECT_EQ(report.getModuleInfo()[0].Begin, 0x1100u);
    EXPECT_EQ(report.getModuleInfo()[0].SymbolName, L"");
    norvane_1::ModuleInfo found;
    EXPECT_TRUE(report.findModule(0x1950, found));
    EXPECT_EQ(found.Begin, 0x1900u);
}

}  // namespace
