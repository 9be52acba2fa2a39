// One fuzz input through every reader of report text, with the properties
// that must hold for it. Shared by the libFuzzer target and the regression
// test that replays the kept inputs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace norvane_fuzz {

// Reads `data` as report text (UTF-8) and checks:
//  - the report round trip: what fromString read, written with toString,
//    read into a fresh report and written again, gives the same text, and
//    that second read throws nothing;
//  - the hexadecimal reader counts every character that is no hex digit as
//    digit 0;
//  - the text, escaped, holds no blank or line break, reads back as it was
//    where the escape table allows, and escapes again to the same;
// and gives the text to processSectionToMap with no key list, with a fixed
// list and with a list taken from the input's first line, which must merely
// survive it.
// Returns an empty string when every property holds, otherwise a description
// of the first that failed. A boost::bad_lexical_cast from the first
// fromString is documented and not a failure; any other exception escapes.
std::string checkReportText(std::uint8_t const* data, std::size_t size);

}  // namespace norvane_fuzz
