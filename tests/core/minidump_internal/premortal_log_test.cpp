// The premortal log: the first lines of the newest ".log" file. Text outside
// ASCII and a last line without a line end, left out, are checked in a
// crash's report (report_extras_test.cpp).
#include <norvane_1/handler_state.h>

#include "plain_handler_state.h"

#include "test_environment.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;
using norvane_test::ScratchDirectory;

class PremortalProbe : public norvane_test::PlainHandlerState {
public:
    bool run() override { return true; }
    using HandlerState::getPremortalWords;
};

void writeLog(fs::path const& file, int lines) {
    std::ofstream out(file, std::ios::binary);
    for (int i = 1; i <= lines; ++i) out << "line " << i << "\n";
}

std::vector<std::wstring> wordsOf(fs::path const& directory) {
    return PremortalProbe().getPremortalWords(directory.wstring().c_str());
}

TEST(PremortalLog, FirstHundredLinesOfTheNewestLog) {
    ScratchDirectory logs("premortal");
    writeLog(logs.path() / "old.log", 3);
    writeLog(logs.path() / "new.log", 150);
    fs::last_write_time(logs.path() / "old.log", fs::file_time_type::clock::now() - std::chrono::hours(2));
    auto const words = wordsOf(logs.path());
    ASSERT_EQ(words.size(), 100u);
    EXPECT_EQ(words.front(), L"line 1");
    EXPECT_EQ(words.back(), L"line 100");
}

}  // namespace
