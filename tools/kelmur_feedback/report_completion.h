// Completing the report the library exported: the host's registered custom
// sections (the library's creation log among them, which comes last) join
// it, and the file is written anew, before anyone reads it.
#pragma once

#include <optional>
#include <string>

namespace kelmur_feedback {

// The completed text, also written back to `path`. A report that can't be
// read, or that its reader rejects, is left as it is.
// The directory of a report's path, with its separator; empty for a bare name.
std::wstring directoryOf(std::string const& path);
// Writes the text as UTF-8 in place of the file; false if it can't.
bool writeReportText(std::string const& path, std::wstring const& text);

std::optional<std::wstring> completeReport(std::string const& path, std::optional<std::wstring> const& text);

}  // namespace kelmur_feedback
