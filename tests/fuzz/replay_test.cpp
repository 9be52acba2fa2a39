// Replays the fuzz seed corpus and every input the fuzzer ever found a fault
// with, on every platform, as ordinary tests.
#include "file_text.h"
#include "report_fuzz_entry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> inputsUnder(fs::path const& directory) {
    std::vector<fs::path> inputs;
    for (auto const& entry : fs::directory_iterator(directory)) {
        if (entry.is_regular_file()) inputs.push_back(entry.path());
    }
    return inputs;
}

void replay(fs::path const& directory) {
    auto const inputs = inputsUnder(directory);
    EXPECT_FALSE(inputs.empty()) << directory;
    for (auto const& path : inputs) {
        SCOPED_TRACE(path.string());
        std::string const bytes = norvane_test::fileText(path);
        std::string failure;
        EXPECT_NO_THROW(
            failure = norvane_fuzz::checkReportText(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size()));
        EXPECT_EQ(failure, std::string());
    }
}

TEST(FuzzReplay, SeedCorpus) { replay(fs::path(NORVANE_FUZZ_DIR) / "corpus"); }

TEST(FuzzReplay, KeptFindings) { replay(fs::path(NORVANE_FUZZ_DIR) / "regressions"); }

}  // namespace
