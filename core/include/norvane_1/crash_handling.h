// Installing crash handling, and the functions a host calls around it.
//
//   int main() {
//       norvane_1::setUnhandledExceptionHandler(nullptr);  // the product's feedback tool
//       norvane_1::setAppProperty(L"Theme", gavrel2::variant_t(L"dark"));
//       ...
//       norvane_1::resetUnhandledExceptionHandler();        // optional, before an orderly exit
//   }
//
// Environment: NORVANE_CRASH_HANDLER names the handler program and wins over
// the argument; NORVANE_DISABLE_EXCEPTION_HANDLER (any value) keeps all of
// this from touching the process; NORVANEMINIDUMP1_INPROCESS_COLLECT and
// NORVANEMINIDUMP1_OUTOFPROCESS_COLLECT choose where the stack is collected.
//
// A crashed process ends with exit code 3, unless the handler process ends
// with 6 ("not our exception"): then the crash goes on to the system's own
// handling (on Linux: the signal's default action, core dump included).
#pragma once

#include <norvane_1/exception_data.h>
#include <norvane_1/export.h>

#include <gavrel2/variant.h>

#include <cstdint>
#include <string>

namespace norvane_1 {

class ExceptionHandler;
class HandlerState;

// Chooses the handler program (null: "kelmur-feedback" in the product's
// program directory) and installs crash handling. Always returns null.
NORVANE_API ExceptionHandler* setUnhandledExceptionHandler(wchar_t const* path);
// Takes crash handling off the process: no hooks, no threads of ours.
NORVANE_API void resetUnhandledExceptionHandler();
// Takes crash handling off and aborts, so that no report comes of it.
NORVANE_API void resetAndAbort();

// Hands an exception to the crash path as if it had been unhandled. Null
// does nothing. setUnhandledExceptionHandler must have run before.
NORVANE_API void runExceptionHandler(ExceptionData* data);

// On-demand reports of a live process (pid 0: this one), which need no
// handler to be set. Each call writes a report of its own,
// "report-<pid>-<time stamp>.txt" in `directory` (null: the log directory;
// a directory given must end with its separator), and blocks the caller
// until the feedback tool has ended.
//
// collectReport: the report's path, completed by the tool (its modules,
// product facts and, with `dumpStack`, the stack of each of its threads);
// with `forCrashDialog` no tool runs and the report is left as the library
// wrote it. Empty when the process has ended, no directory can be told, or
// the tool fails. sendFeedback: collects as above, then has the tool send
// the report; true only when it was delivered.
NORVANE_API std::wstring collectReport(bool dumpStack, unsigned long pid, wchar_t const* directory,
                                       bool forCrashDialog);
NORVANE_API bool sendFeedback(bool dumpStack, unsigned long pid, wchar_t const* directory);
// Has the feedback tool end this process ("-mercy-kill="): asked to close
// first, ended by force 2 seconds later. True if the tool ended with 0.
NORVANE_API bool terminateProduct();

// A property of the host that the crash report shows in "ClientInfo". An
// empty value removes it.
NORVANE_API void setAppProperty(std::wstring const& name, gavrel2::variant_t const& value);
// Called once on the crashed thread when a crash begins; its result is ignored.
NORVANE_API void setGFGSutdownCallback(bool (*callback)());

enum add_custom_section_result_t {
    custom_section_added = 0,
    custom_section_exists = -1,       // the name is registered already; the list is unchanged
    custom_section_file_error = -2,   // no directory, or the list can't be read or written
    custom_section_bad_argument = -3  // an empty name or path
};

// Registers a file whose text a crash report is to carry as the section
// `name`, in "norvane_custom_sections.txt" of `directory` (null: the log
// directory; a directory given must end with its separator). The file is
// read only when a report is completed, so it may not exist yet.
NORVANE_API add_custom_section_result_t addCrashReportCustomSection(std::wstring const& name, std::wstring const& file,
                                                                    wchar_t const* directory);

// One line in "norvane_creation_log.txt" of `directory` (null: the log
// directory): the label, " : ", a time stamp, " : ", the text.
NORVANE_API void addCreationLogRecord(char const* function, std::wstring const& text, wchar_t const* directory);

// The text of the report's "Process" section for a process (0: this one):
// its name and, where they can be had, its virtual memory and working set.
NORVANE_API std::wstring getProcessMemInfo(std::uint32_t pid);
// The base name of a process's executable (0: this process); empty if the
// process can't be examined.
NORVANE_API std::wstring getProcessName(unsigned long pid);

// The platform's HandlerState; the caller owns it. HandlerState::get() uses it.
NORVANE_API HandlerState* createHandlerState();

}  // namespace norvane_1
