// Reading back what a test, a child or the library left in a file.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace norvane_test {

// The file's bytes; empty if it can't be read.
inline std::string fileText(std::filesystem::path const& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The file's lines; none if it can't be read. CR LF counts as LF: files
// written on Windows have it.
inline std::vector<std::string> fileLines(std::filesystem::path const& file) {
    std::vector<std::string> lines;
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

}  // namespace norvane_test
