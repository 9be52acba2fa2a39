// libFuzzer target: arbitrary text through the report readers.
#include "report_fuzz_entry.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    norvane_fuzz::readReportText(data, size);
    return 0;
}
