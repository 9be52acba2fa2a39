// The creation log: one line per stage of crash handling, in
// "norvane_creation_log.txt" beside the report. Portable code only.
//
// Each record opens the file, appends one whole line in one write and closes
// it again, so that records of several threads and processes interleave by
// line and a crash at any point leaves every earlier line on disk. Lines
// are UTF-8.
#include <norvane_1/crash_handling.h>
#include <norvane_1/os_layer.h>

#include "minidump_problem_report_storage/log_directory.h"
#include "minidump_problem_report_storage/report_progress.h"
#include "os_layer/text_files.h"

#include <vantix_2_18/utf.h>

namespace norvane_1 {
namespace {

constexpr wchar_t kCreationLogName[] = L"norvane_creation_log.txt";

void discardCreationLog(std::wstring const& directory) { os_layer::deleteFile(directory + kCreationLogName); }

// The report's own steps (contexts and stacks added, modules pruned, product
// detected) are records of this log too. Handed in while the library loads,
// before any thread can make a report.
[[maybe_unused]] bool const g_reportProgressLogged =
    (internal::setProgressSink({&addCreationLogRecord, &discardCreationLog}), true);

}  // namespace

void addCreationLogRecord(char const* function, std::wstring const& text, wchar_t const* directory) {
    if (function == nullptr || text.empty()) return;
    std::wstring const folder = directoryOrLogDirectory(directory);
    if (folder.empty()) return;
    os_layer::appendLine(folder + kCreationLogName, std::string(function) + " : " +
                                                        VANTIX_2_18::utf::to_utf8(os_layer::getTimeStamp()) + " : " +
                                                        VANTIX_2_18::utf::to_utf8(text));
}

}  // namespace norvane_1
