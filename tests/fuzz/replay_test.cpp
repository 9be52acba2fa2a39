// Replays the fuzz seed corpus and every input the fuzzer ever found a fault
// with, on every platform, as ordinary tests.
#include "file_text.h"
#include "report_fuzz_entry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

void replay(fs::path const& directory) {
    int inputs = 0;
    for (auto const& entry : fs::directory_iterator(directory)) {
        if (!entry.is_regular_file()) continue;
        ++inputs;
        SCOPED_TRACE(entry.path().string());
        std::string const bytes = norvane_test::fileText(entry.path());
        std::string failure;
        EXPECT_NO_THROW(
            failure = norvane_fuzz::checkReportText(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size()));
        EXPECT_EQ(failure, std::string());
    }
    EXPECT_GT(inputs, 0) << directory;
}

TEST(FuzzReplay, SeedCorpus) { replay(fs::path(NORVANE_FUZZ_DIR) / "corpus"); }

TEST(FuzzReplay, KeptFindings) { replay(fs::path(NORVANE_FUZZ_DIR) / "regressions"); }

}  // namespace
