// One fuzz input through every reader of report text, with the properties
// that must hold for it. Shared by the libFuzzer target and the regression
// test that replays the kept inputs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace norvane_fuzz {

// Reads `data` as report text (UTF-8) and checks the report round trip: what
// fromString read, written with toString, read into a fresh report and
// written again, gives the same text, and that second read throws nothing.
// Then gives the text to processSectionToMap with no key list, with a fixed
// list and with a list taken from the input's first line, which must merely
// survive it. The value forms, escaped text among them, have their tables in
// tests/core/minidump_problem_report_storage/value_forms_test.cpp.
// Returns an empty string when the round trip holds, otherwise a description
// of how it failed. A boost::bad_lexical_cast from the first
// fromString is documented and not a failure; any other exception escapes.
std::string checkReportText(std::uint8_t const* data, std::size_t size);

}  // namespace norvane_fuzz
