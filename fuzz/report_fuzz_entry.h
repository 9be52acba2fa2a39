// One fuzz input through every reader of report text. Shared by the libFuzzer
// target and the regression test that replays the kept inputs.
#pragma once

#include <cstddef>
#include <cstdint>

namespace norvane_fuzz {

// Reads `data` as report text (UTF-8) with fromString, writes the result back
// with toString, and gives the same text to processSectionToMap with no key
// list, with a fixed list and with a list taken from the input's first line.
// A boost::bad_lexical_cast from fromString is documented and not a finding;
// any other exception escapes to the caller.
void readReportText(std::uint8_t const* data, std::size_t size);

}  // namespace norvane_fuzz
