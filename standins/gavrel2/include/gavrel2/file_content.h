// Whole-file text of the general helper library. Code page 1 means UTF-8,
// the only one the crash library uses; a UTF-8 byte order mark is skipped on
// reading and never written.
#pragma once

#include <cstdint>
#include <string>

namespace gavrel2 {

// The code page of a text file: 1 (UTF-8) for every readable file, 0 if the
// file can't be read. `flags` is accepted for compatibility and must be 0.
int get_file_cp(std::wstring const& path, int flags);
// The file's text; empty if it can't be read. `limit` 0 reads all of it,
// otherwise at most that many bytes.
std::wstring get_file_content(int codePage, std::wstring const& path, std::uint64_t limit);
// Writes the text, replacing the file. False if it can't be written.
bool set_file_content(std::wstring const& text, int codePage, std::wstring const& path);

}  // namespace gavrel2
