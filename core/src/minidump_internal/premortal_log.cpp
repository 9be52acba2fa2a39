// The premortal log: the head of the process's newest ordinary log file.
// Portable code only.
#include <norvane_1/handler_state.h>
#include <norvane_1/os_layer.h>

#include "minidump_problem_report_storage/log_directory.h"
#include "os_layer/text_files.h"

#include <gavrel2/path.h>
#include <vantix_2_18/utf.h>

#include <algorithm>

namespace norvane_1 {
namespace {

constexpr std::size_t kPremortalLines = 100;

struct LogFile {
    std::wstring path;
    std::int64_t modified;
};

// ".log" files exactly, case included, newest first.
std::vector<LogFile> logFilesOf(std::wstring const& directory) {
    std::vector<std::wstring> items;
    os_layer::enumDirContent(directory, items);
    std::vector<LogFile> logs;
    for (auto const& item : items) {
        if (gavrel2::path_t(item).get_ext() == L"log") logs.push_back({item, os_layer::getFileModificationTime(item)});
    }
    std::sort(logs.begin(), logs.end(), [](LogFile const& a, LogFile const& b) { return a.modified > b.modified; });
    return logs;
}

}  // namespace

std::vector<std::wstring> HandlerState::getPremortalWords(wchar_t const* directory) {
    std::wstring const folder = directory ? std::wstring(directory) : logDirectory();
    if (folder.empty()) return {};
    auto const logs = logFilesOf(folder);
    if (logs.empty()) return {};
    std::ifstream in;
    os_layer::openTextFile(in, logs.front().path, std::ios::in);
    if (!in) return {};
    // A line counts only when the stream is still good behind it, so a last
    // line without its line end is left out. The log is UTF-8.
    std::vector<std::wstring> lines;
    std::string line;
    while (lines.size() < kPremortalLines && std::getline(in, line) && in.good()) {
        lines.push_back(VANTIX_2_18::utf::from_utf8(line));
    }
    return lines;
}

}  // namespace norvane_1
