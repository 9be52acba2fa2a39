// The crashed process's dump, written from outside to the path the report
// names under "Dump" ("crash.dmp" in the log directory). crash_dump_windows.cpp
// writes a minidump with the debug-help library; crash_dump_posix.cpp has
// none to write (the report's stacks of every thread stand in its place,
// and a core file is the system's business).
#pragma once

#include <norvane_1/problem_report_storage.h>

#include <cstdint>
#include <string>

namespace kelmur_feedback {

struct DumpRequest {
    std::wstring path;
    std::uint32_t processId = 0;
    std::uint32_t threadId = 0;  // the crashed thread, whose exception the dump carries
    norvane_1::Exception exception;
    norvane_1::Context context;    // the crashed thread's, at the fault
    std::uint32_t dumpMemory = 0;  // above 0: also the memory the stacks point at
};

// Empty when written (or when the platform has no dump to write), else why not.
std::string writeCrashDump(DumpRequest const& request);

// The dump of the crash a report describes (its text); empty when written or
// when there is none to write, else why not.
std::string writeDumpOfReport(std::wstring const& reportText, std::uint32_t dumpMemory);

}  // namespace kelmur_feedback
