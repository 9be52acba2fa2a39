// Where the crash files of this process go: the report, the custom-section
// list, the creation and premortal logs. Portable code only.
#pragma once

#include <string>

namespace norvane_1 {

// The log directory with its trailing separator; empty if it can't be told.
std::wstring logDirectory();
// `directory` with a separator added at its end if it has none; the log
// directory when `directory` is null.
std::wstring directoryOrLogDirectory(wchar_t const* directory);

}  // namespace norvane_1
