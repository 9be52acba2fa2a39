// Choosing and starting the handler program, and the "Process" section of
// a process that can't be opened. A name looked up in the product's program
// directory is how every crash test finds its handler; the variable and a
// missing handler are crashed on in crash_outcome_test.cpp (HandlerLookups);
// the "Process" section of a crashed process is in every crash's report.
#include <norvane_1/crash_handling.h>
#include <norvane_1/exception_handler.h>

#include "test_environment.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using norvane_1::ActualExceptionHandler;
using norvane_test::ScopedVariable;
using norvane_test::ScratchDirectory;

void touch(std::filesystem::path const& file) { std::ofstream(file) << "x"; }

class HandlerPathTest : public ::testing::Test {
protected:
    ScratchDirectory files{"handler-path"};
    ScopedVariable noChoice{"NORVANE_CRASH_HANDLER", ""};
    // Crash handling stays off: the handler object's destructor runs the
    // remove step, which is harmless when nothing was installed.
    ScopedVariable disabled{"NORVANE_DISABLE_EXCEPTION_HANDLER", "1"};
};

// Unlike a name in the program directory, it gets no ".exe" added.
TEST_F(HandlerPathTest, AnAbsolutePathMustExistAsGiven) {
    touch(files.path() / "handler.exe");
    ActualExceptionHandler handler;
    handler.setHandlerPath((files.path() / "handler").wstring().c_str());
    EXPECT_EQ(handler.getHandlerPath(), L"");
    std::wstring const full = (files.path() / "handler.exe").wstring();
    handler.setHandlerPath(full.c_str());
    EXPECT_EQ(handler.getHandlerPath(), full);
    handler.setHandlerPath(nullptr);  // no argument, no variable: no change
    EXPECT_EQ(handler.getHandlerPath(), full);
}

TEST(SpawnHandler, AProgramThatIsMissingGivesMinusOne) {
    ScratchDirectory files("spawn");
    EXPECT_EQ(ActualExceptionHandler::spawnHandler((files.path() / "none.exe").wstring(), {L"-x"}), -1);
}

TEST(ProcessMemInfo, AProcessThatCantBeOpenedGivesTheNameLineAlone) {
    EXPECT_EQ(norvane_1::getProcessMemInfo(0x7ffffff0u), L"Process Name: \n");
}

}  // namespace
