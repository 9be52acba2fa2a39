// The task service: the way back from the handler process into the crashed
// one. While a crash is handled, the crashed process listens for tasks; the
// handler process, when it can't read the stack from outside, asks for it to
// be collected in-process and waits until the report is final:
//
//   // in the handler process, with the crashed process's log directory:
//   if (norvane_1::executeMinidumpTask(norvane_1::fallbackInProc, nullptr, 0, logDirectory.c_str())) {
//       // crash_info.txt now holds the crashed thread's stack
//   }
//
// On Windows the service is the named pipe "\\.\pipe\minidump_task_pipe". On
// Linux it is a Unix-domain socket of the crashed process's own, in a
// directory that only its user may enter; a client reaches the service of
// its own process or, failing that, of its parent (the handler process is
// the crashed process's child).
#pragma once

#include <norvane_1/export.h>

#include <cstdint>

namespace norvane_1 {

enum minidump_task_code_t : std::uint32_t {
    fallbackInProc = 1,    // collect the crashed thread's stack in-process; "PASS" when the report is final
    terminateService = 2,  // end the service; no answer
};

// Starts the service's thread; a second start does nothing.
NORVANE_API void startExecuteMinidumpTaskthread();
// Ends the service and waits for its thread.
NORVANE_API void stopExecuteMinidumpTaskThread();
// The same two, for a host that wants the service outside a crash.
NORVANE_API void startEMTThread();
NORVANE_API void stopEMTThread();

// Sends a task to the service and waits for its answer. `data` (at most 2048
// bytes, `size` of them) only goes into the log line. `directory` receives
// the call's creation-log records; null means this process's log directory.
// True when the task was carried out, or, for terminateService, sent.
NORVANE_API bool executeMinidumpTask(minidump_task_code_t code, void* data, std::uint64_t size,
                                     wchar_t const* directory);

}  // namespace norvane_1
