// The names of module sections. Portable code only.
#pragma once

#include <cstddef>
#include <string>

namespace norvane_1 {
namespace internal {

// "Module" and the position, zero-filled to at least three digits.
std::wstring moduleSectionName(std::size_t position);

}  // namespace internal
}  // namespace norvane_1
