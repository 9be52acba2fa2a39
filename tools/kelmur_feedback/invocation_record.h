// The test hook KELMUR_FEEDBACK_RECORD: a file that shows from outside how
// the handler was started and when.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelmur_feedback {

// Microseconds since the Unix epoch, by the system clock, comparable with
// the times other programs on the machine take the same way.
std::int64_t microsecondsSinceEpoch();

// Writes each argument on a line of its own (UTF-8), then
// "started-us: <startedUs>". False if the file can't be written.
bool writeInvocationRecord(std::string const& file, std::vector<std::string> const& arguments, std::int64_t startedUs);

}  // namespace kelmur_feedback
