// What a host adds to its crash reports beside the crash itself: custom
// sections, and lines of the creation log.
#pragma once

namespace crash_host {

// Writes two text files into the log directory (NORVANE_LOG_DIR, which must
// be set) and registers them as the custom sections "Device Info" and
// "Журнал 日志"; the second file's name and text lie outside ASCII too.
// Returns false when the directory isn't set or a file can't be written.
bool registerCustomSections();

// Writes CRASH_HOST_RECORDS (default 1000) records to the creation log of
// the log directory, each naming this process and its number, for tests
// that have several processes write at once.
void writeCreationLogRecords();

}  // namespace crash_host
