// Choosing the handler program.
#include <norvane_1/exception_handler.h>

#include "test_environment.h"

#include <gavrel2/stdpaths.h>

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

TEST_F(HandlerPathTest, AnAbsolutePathMustExistAsGiven) {
    touch(files.path() / "handler.exe");
    ActualExceptionHandler handler;
    std::wstring withoutExtension = (files.path() / "handler").wstring();
    EXPECT_FALSE(handler.locateHandler(withoutExtension));
    handler.setHandlerPath(withoutExtension.c_str());
    EXPECT_EQ(handler.getHandlerPath(), L"");
    std::wstring const full = (files.path() / "handler.exe").wstring();
    handler.setHandlerPath(full.c_str());
    EXPECT_EQ(handler.getHandlerPath(), full);
    handler.setHandlerPath(nullptr);  // no argument, no variable: no change
    EXPECT_EQ(handler.getHandlerPath(), full);
}

TEST_F(HandlerPathTest, TheVariableWinsAndAMissingOneKeepsThePath) {
    touch(files.path() / "argument.exe");
    touch(files.path() / "chosen.exe");
    std::wstring const argument = (files.path() / "argument.exe").wstring();
    ActualExceptionHandler handler;
    {
        ScopedVariable chosen("NORVANE_CRASH_HANDLER", (files.path() / "missing.exe").string());
        handler.setHandlerPath(argument.c_str());
        EXPECT_EQ(handler.getHandlerPath(), L"");  // the argument isn't tried
    }
    {
        ScopedVariable chosen("NORVANE_CRASH_HANDLER", (files.path() / "chosen.exe").string());
        handler.setHandlerPath(argument.c_str());
        EXPECT_EQ(handler.getHandlerPath(), (files.path() / "chosen.exe").wstring());
    }
}

TEST_F(HandlerPathTest, ARelativeNameIsLookedUpInTheProductsProgramDirectory) {
    // The product's programs lie beside this test program, which serves as
    // the program to find; on Windows without its ".exe", which is tried too.
    gavrel2::path_t const program = gavrel2::stdpaths::get_program_path();
    std::wstring name = program.get_leaf();
    if (name.size() > 4 && name.compare(name.size() - 4, 4, L".exe") == 0) name.resize(name.size() - 4);
    ActualExceptionHandler handler;
    EXPECT_TRUE(handler.locateHandler(name));
    EXPECT_EQ(name, program.as_string());
    std::wstring missing = L"no-such-handler";
    EXPECT_FALSE(handler.locateHandler(missing));
    EXPECT_EQ(missing, L"no-such-handler");
}

TEST(SpawnHandler, AProgramThatIsMissingGivesMinusOne) {
    ScratchDirectory files("spawn");
    EXPECT_EQ(ActualExceptionHandler::spawnHandler((files.path() / "none.exe").wstring(), {L"-x"}), -1);
}

}  // namespace
