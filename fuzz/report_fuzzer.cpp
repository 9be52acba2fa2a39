// libFuzzer target: arbitrary text through the report readers, with the
// properties of report_fuzz_entry.h as its oracle. A property that fails
// aborts, so that libFuzzer keeps the input.
#include "report_fuzz_entry.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const failure = norvane_fuzz::checkReportText(data, size);
    if (!failure.empty()) {
        std::fprintf(stderr, "\n==== report property failed: %s\n", failure.c_str());
        std::fflush(stderr);
        std::abort();
    }
    return 0;
}
