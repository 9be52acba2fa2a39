// The creation log: one line per stage of crash handling, in
// "norvane_creation_log.txt" beside the report. Portable code only.
//
// Each record opens the file, appends one whole line in one write and closes
// it again, so that records of several threads and processes interleave by
// line and a crash at any point leaves every earlier line on disk. Lines
// are UTF-8.
#include <norvane_1/crash_handling.h>
#include <norvane_1/os_layer.h>

#include "log_directory.h"
#include "os_layer/text_files.h"

#include <vantix_2_18/utf.h>

namespace norvane_1 {

void addCreationLogRecord(char const* function, std::wstring const& text, wchar_t const* directory) {
    if (function == nullptr || text.empty()) return;
    std::wstring const folder = directoryOrLogDirectory(directory);
    if (folder.empty()) return;
    os_layer::appendLine(folder + L"norvane_creation_log.txt",
                         std::string(function) + " : " + VANTIX_2_18::utf::to_utf8(os_layer::getTimeStamp()) + " : " +
                             VANTIX_2_18::utf::to_utf8(text));
}

}  // namespace norvane_1
