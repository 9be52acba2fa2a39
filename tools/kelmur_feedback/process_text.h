// The program's arguments and environment as UTF-8, whatever the platform
// hands over. process_text_posix.cpp and process_text_windows.cpp implement it.
#pragma once

#include <string>
#include <vector>

namespace kelmur_feedback {

// argv[1..]. On Windows they are read from the wide command line, so that
// paths outside the ANSI code page come through intact.
std::vector<std::string> programArguments(int argc, char** argv);

// The variable's value; empty if it is not set.
std::string environmentValue(char const* name);

}  // namespace kelmur_feedback
