// Environment variables, as the general helper library gives them.
#pragma once

#include <string>

namespace gavrel2 {

// The variable's value; an empty string if it is not set.
std::wstring get_environ_value(std::wstring const& name);

}  // namespace gavrel2
