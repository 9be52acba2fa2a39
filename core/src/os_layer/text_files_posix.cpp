// Wide paths become UTF-8 file names on POSIX.
#include "text_files.h"

#include "scoped_descriptor_posix.h"

#include <vantix_2_18/utf.h>

#include <fcntl.h>
#include <unistd.h>

namespace norvane_1 {
namespace os_layer {

void openTextFile(std::ofstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(VANTIX_2_18::utf::to_utf8(path), mode);
}

void openTextFile(std::ifstream& stream, std::wstring const& path, std::ios::openmode mode) {
    stream.open(VANTIX_2_18::utf::to_utf8(path), mode);
}

// O_APPEND makes each write land at the end of the file as one piece.
bool appendLine(std::wstring const& path, std::string const& line) { return appendLines(path, {line}); }

bool appendLines(std::wstring const& path, std::initializer_list<std::string> lines) {
    ScopedDescriptor const file(
        ::open(VANTIX_2_18::utf::to_utf8(path).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
    if (!file.valid()) return false;
    std::string record;
    for (std::string const& line : lines) record.append(line).append("\n");
    return ::write(file.get(), record.data(), record.size()) == static_cast<ssize_t>(record.size());
}

}  // namespace os_layer
}  // namespace norvane_1
