// Wide paths go to the wide open of the run-time library on Windows, which
// shares the file with other readers and writers.
#include "text_files.h"

namespace norvane_1 {
namespace os_layer {

void openTextFile(std::ofstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(path.c_str(), mode);
}

void openTextFile(std::ifstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(path.c_str(), mode);
}

}  // namespace os_layer
}  // namespace norvane_1
