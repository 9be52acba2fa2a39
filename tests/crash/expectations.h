// What the library promises about every crash it handles, as test checks.
#pragma once

#include "child_process.h"

#include <norvane_1/problem_report_storage.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace crash_test {

// The process ended with the library's exit code 3.
testing::AssertionResult handledByLibrary(norvane_test::ChildOutcome const& outcome);

// The fourteen arguments every handler call starts with.
std::vector<std::string> fixedHandlerArguments(std::filesystem::path const& logDirectory, std::uint32_t stackProcessId);

// Each of the 17 registers in the crashed thread's context section, as an
// address ("0x" and 16 hex digits).
void expectAllRegisters(norvane_1::ProblemReportStorage& report, std::uint32_t threadId);

// The keys of a section of key text.
norvane_1::StringMap sectionKeys(norvane_1::ProblemReportStorage& report, wchar_t const* section);

// The records of a creation log (its lines) match `patterns` in order, other
// lines between them allowed.
testing::AssertionResult recordsInOrder(std::vector<std::string> const& log, std::vector<std::string> const& patterns);

std::wstring wide(std::string const& utf8);
std::wstring wide(std::filesystem::path const& path);

}  // namespace crash_test
