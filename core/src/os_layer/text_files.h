// Opening files by wide path for narrow (UTF-8) text. Portable interface;
// text_files_windows.cpp and text_files_posix.cpp implement it.
#pragma once

#include <fstream>
#include <initializer_list>
#include <string>

namespace norvane_1 {
namespace os_layer {

// Opens `path` in `mode` (text mode unless `mode` says binary). The file is
// shared with other readers and writers.
void openTextFile(std::ofstream& stream, std::wstring const& path, std::ios::openmode mode);
void openTextFile(std::ifstream& stream, std::wstring const& path, std::ios::openmode mode);

// Appends one line (UTF-8, without its line end) to the file, creating it if
// need be, in a single write at the end of the file: lines of several
// processes appending at once interleave whole, never torn or lost. The
// platform's line end follows. False if the file can't be opened or written.
bool appendLine(std::wstring const& path, std::string const& line);
// The same for lines that belong together, in one write: they stay together
// between other processes' and threads' lines.
bool appendLines(std::wstring const& path, std::initializer_list<std::string> lines);

}  // namespace os_layer
}  // namespace norvane_1
