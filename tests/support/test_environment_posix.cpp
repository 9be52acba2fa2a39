#include "test_environment.h"

#include <cstdlib>

namespace norvane_test {

void setVariable(std::string const& name, std::string const& value) {
    if (value.empty()) {
        ::unsetenv(name.c_str());
    } else {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

std::string getVariable(std::string const& name) {
    char const* value = std::getenv(name.c_str());
    return value ? value : "";
}

}  // namespace norvane_test
