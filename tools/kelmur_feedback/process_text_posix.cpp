// POSIX code only: arguments and environment are bytes, taken as UTF-8.
#include "process_text.h"

#include <cstdlib>

namespace kelmur_feedback {

std::vector<std::string> programArguments(int argc, char** argv) {
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

std::string environmentValue(char const* name) {
    char const* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace kelmur_feedback
