#include "report_extras.h"

#include <norvane_1/norvane.h>

#include <vantix_2_18/utf.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace crash_host {
namespace {

namespace fs = std::filesystem;
using VANTIX_2_18::utf::from_utf8;

std::string variable(char const* name) {
    char const* value = std::getenv(name);
    return value ? value : "";
}

// Paths are kept as UTF-8 and handed to the file system and the library in
// the form each wants, whatever the locale.
bool writeSection(std::string const& directory, std::string const& fileName, std::string const& text,
                  std::wstring const& sectionName) {
    std::string const path = (fs::u8path(directory) / fs::u8path(fileName)).u8string();
    std::ofstream(fs::u8path(path), std::ios::binary) << text;
    return norvane_1::addCrashReportCustomSection(sectionName, from_utf8(path), nullptr) ==
           norvane_1::custom_section_added;
}

}  // namespace

bool registerCustomSections() {
    std::string const directory = variable("NORVANE_LOG_DIR");
    if (directory.empty()) return false;
    fs::create_directories(fs::u8path(directory));
    bool const device = writeSection(directory, "device info.txt", "GPU: test adapter\nDriver: 1.2.3\n",
                                     L"Device Info");
    bool const journal = writeSection(directory, u8"заметки 笔记.txt", u8"Запись: готово\n记录: 完成\n",
                                      from_utf8(u8"Журнал 日志"));
    return device && journal;
}

void writeCreationLogRecords() {
    std::string const countText = variable("CRASH_HOST_RECORDS");
    int const count = countText.empty() ? 1000 : std::atoi(countText.c_str());
    std::string const self = variable("CRASH_HOST_WRITER");
    for (int i = 0; i < count; ++i) {
        norvane_1::addCreationLogRecord("crash_host::writeCreationLogRecords",
                                        from_utf8("writer " + self + " record " + std::to_string(i)), nullptr);
    }
}

}  // namespace crash_host
