// What the portable parts of the stand-in need from the platform files.
#pragma once

#include <cstdio>
#include <string>

namespace gavrel2 {
namespace detail {

// The separator the platform writes; isSeparator accepts every one it reads.
wchar_t preferredSeparator();
bool isSeparator(wchar_t c);
bool isAbsolute(std::wstring const& path);
// One directory level; false if it wasn't made.
bool makeDirectory(std::wstring const& path);
// fopen of a wide path; null on failure.
std::FILE* openFile(std::wstring const& path, char const* mode);

}  // namespace detail
}  // namespace gavrel2
