// Whole-file text in UTF-8.
#include "gavrel2/file_content.h"

#include "platform.h"

#include <vantix_2_18/utf.h>

#include <memory>

namespace gavrel2 {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

}  // namespace

int get_file_cp(std::wstring const& path, int /*flags*/) {
    File file(detail::openFile(path, "rb"));
    return file ? 1 : 0;
}

std::wstring get_file_content(int /*codePage*/, std::wstring const& path, std::uint64_t limit) {
    File file(detail::openFile(path, "rb"));
    if (!file) return std::wstring();
    std::string bytes;
    char buffer[65536];
    std::size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
        bytes.append(buffer, got);
        if (limit != 0 && bytes.size() >= limit) {
            bytes.resize(static_cast<std::size_t>(limit));
            break;
        }
    }
    if (bytes.compare(0, 3, kByteOrderMark) == 0) bytes.erase(0, 3);
    return VANTIX_2_18::utf::from_utf8(bytes);
}

bool set_file_content(std::wstring const& text, int /*codePage*/, std::wstring const& path) {
    File file(detail::openFile(path, "wb"));
    if (!file) return false;
    std::string const bytes = VANTIX_2_18::utf::to_utf8(text);
    return std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
}

}  // namespace gavrel2
