#include "expectations.h"

#include <norvane_1/string_traits.h>

#include <vantix_2_18/utf.h>

#include <cstdio>
#include <regex>

namespace crash_test {

testing::AssertionResult handledByLibrary(norvane_test::ChildOutcome const& outcome) {
    if (outcome.finished && outcome.exited && outcome.exitCode == 3) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the host " << norvane_test::describe(outcome)
                                       << ", not with the library's exit code 3";
}

std::vector<std::string> fixedHandlerArguments(std::filesystem::path const& logDirectory,
                                               std::uint32_t stackProcessId) {
    return {"-handle-crash",        "-report-system-info",
            "-system-info-file",    (logDirectory / "system_info.txt").u8string(),
            "-collect-module-info", "-collect-product-info",
            "-crash-info-file",     (logDirectory / "crash_info.txt").u8string(),
            "-minidump-stack",      std::to_string(stackProcessId),
            "-dump-memory",         "1",
            "-load-module-map",     "0"};
}

norvane_1::StringMap sectionKeys(norvane_1::ProblemReportStorage& report, wchar_t const* section) {
    norvane_1::StringMap keys;
    norvane_1::processSectionToMap(report.getSection(section), keys, {});
    return keys;
}

void expectAllRegisters(norvane_1::ProblemReportStorage& report, std::uint32_t threadId) {
    wchar_t name[32];
    std::swprintf(name, sizeof name / sizeof name[0], L"Context.0x%08x", threadId);
    norvane_1::StringMap const keys = sectionKeys(report, name);
    std::wregex const address(L"0x[0-9a-f]{16}");
    for (wchar_t const* reg : {L"EAX", L"EBX", L"ECX", L"EDX", L"ESI", L"EDI", L"EBP", L"ESP", L"EIP", L"R8", L"R9",
                               L"R10", L"R11", L"R12", L"R13", L"R14", L"R15"}) {
        EXPECT_TRUE(std::regex_match(norvane_1::get(keys, reg), address))
            << "register " << VANTIX_2_18::utf::to_utf8(reg) << " of section " << VANTIX_2_18::utf::to_utf8(name);
    }
    EXPECT_EQ(keys.size(), 17u);
}

testing::AssertionResult recordsInOrder(std::vector<std::string> const& log, std::vector<std::string> const& patterns) {
    std::size_t next = 0;
    for (auto const& line : log) {
        if (next < patterns.size() && std::regex_match(line, std::regex(patterns[next]))) ++next;
    }
    if (next == patterns.size()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "missing or out of order: " << patterns[next];
}

std::wstring wide(std::string const& utf8) { return VANTIX_2_18::utf::from_utf8(utf8); }
std::wstring wide(std::filesystem::path const& path) { return wide(path.u8string()); }

}  // namespace crash_test
