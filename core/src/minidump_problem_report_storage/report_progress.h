// Where the report's upkeep tells of its steps. Portable code only.
//
// The report keeps no log file of its own. The crash handling, which keeps
// the creation log, hands in where the records go once, while the library
// is loaded and before any thread can make a report; until then, and in a
// program that never hands any in, the records go nowhere.
#pragma once

#include <string>

namespace norvane_1 {
namespace internal {

struct ProgressSink {
    // One record: the step's source label, its text, and the report's
    // directory (null: the log directory).
    void (*record)(char const* source, std::wstring const& text, wchar_t const* directory);
    // A report of a live process has taken in the record file in
    // `directory` (the report's path as it stands): the file goes.
    void (*discard)(std::wstring const& directory);
};

void setProgressSink(ProgressSink const& sink);

void recordProgress(char const* source, std::wstring const& text, wchar_t const* directory);
void discardProgressRecords(std::wstring const& directory);

}  // namespace internal
}  // namespace norvane_1
