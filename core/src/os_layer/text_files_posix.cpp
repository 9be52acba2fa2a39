// Wide paths become UTF-8 file names on POSIX.
#include "text_files.h"

#include <vantix_2_18/utf.h>

namespace norvane_1 {
namespace os_layer {

void openTextFile(std::ofstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(VANTIX_2_18::utf::to_utf8(path), mode);
}

void openTextFile(std::ifstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(VANTIX_2_18::utf::to_utf8(path), mode);
}

}  // namespace os_layer
}  // namespace norvane_1
