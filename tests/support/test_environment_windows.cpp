#include "test_environment.h"

#include <windows.h>

#include <cstdlib>
#include <vector>

namespace norvane_test {

// Both the system's block, which children inherit and the library reads,
// and the run-time library's copy, which getenv reads.
void setVariable(std::string const& name, std::string const& value) {
    ::SetEnvironmentVariableA(name.c_str(), value.empty() ? nullptr : value.c_str());
    ::_putenv_s(name.c_str(), value.c_str());
}

std::string getVariable(std::string const& name) {
    DWORD const size = ::GetEnvironmentVariableA(name.c_str(), nullptr, 0);
    if (size == 0) return "";
    std::vector<char> value(size);
    DWORD const got = ::GetEnvironmentVariableA(name.c_str(), value.data(), size);
    return std::string(value.data(), got);
}

}  // namespace norvane_test
