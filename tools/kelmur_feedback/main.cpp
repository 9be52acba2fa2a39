// kelmur-feedback: the reference feedback tool. The library starts it and
// waits for it, for four jobs (command_line.h has their command lines); a
// wrong command line gives usage on stderr and exit code 2.
//
// After a crash (-handle-crash ...) its exit code decides how the crash ends
// (6: "not our exception", the crash goes on to the system's own handling).
// It reads the report named by -crash-info-file, and, when the library left
// the stacks to it (-minidump-stack with a process id), reads every thread's
// from outside (crash_stacks.h), or, failing that, has the crashed process
// collect its own over the task service. On Windows it writes the crash's
// minidump (crash_dump.h). Then it
// completes the report with the host's custom sections, writes it back,
// prints a summary and exits with 0.
//
// On demand it completes the report of a live process (on_demand_report.h),
// sends a report (report_sending.h), or ends a process (-mercy-kill=<pid>).
// For people and scripts it gives a report as JSON (json_export.h), and for
// a person as text with its stacks named (report_view.h).
//
// Test hooks, from the environment:
//   KELMUR_FEEDBACK_RECORD=<file>     first of all, write the arguments and
//                                     the start time there (invocation_record.h)
//   KELMUR_FEEDBACK_EXIT_CODE=<n>     exit with n once the work is done
//   KELMUR_FEEDBACK_NO_OUTSIDE_STACKS=1  after a crash, act as if the stacks
//                                     could not be read from outside
//   KELMUR_FEEDBACK_NO_DUMP=1         after a crash, write no dump (Wine's
//                                     debug-help library takes seconds)
//   KELMUR_FEEDBACK_KEEP_REPORT=1     leave crash_info.txt as the library wrote
//                                     it (for timing the library's export)
//   KELMUR_FEEDBACK_OUTBOX=<dir>      keep reports that could not be sent
//                                     there, not beside the program
//                                     (report_sending.h)
#include "command_line.h"
#include "crash_dump.h"
#include "crash_stacks.h"
#include "invocation_record.h"
#include "json_export.h"
#include "on_demand_report.h"
#include "process_text.h"
#include "report_completion.h"
#include "report_sending.h"
#include "report_summary.h"
#include "report_view.h"
#include "stack_fallback.h"

#include <norvane_1/os_layer.h>

#include <cstdlib>
#include <iostream>
#include <variant>

namespace {

constexpr int kUsageExitCode = 2;

int requestedExitCode() {
    std::string const text = kelmur_feedback::environmentValue("KELMUR_FEEDBACK_EXIT_CODE");
    if (text.empty()) return 0;
    char* end = nullptr;
    long const code = std::strtol(text.c_str(), &end, 10);
    if (*end != '\0') {
        std::cerr << "kelmur-feedback: KELMUR_FEEDBACK_EXIT_CODE is not a number: " << text << '\n';
        return 0;
    }
    return static_cast<int>(code);
}

void recordInvocation(std::vector<std::string> const& arguments, std::int64_t startedUs) {
    std::string const file = kelmur_feedback::environmentValue("KELMUR_FEEDBACK_RECORD");
    if (file.empty()) return;
    if (!kelmur_feedback::writeInvocationRecord(file, arguments, startedUs)) {
        std::cerr << "kelmur-feedback: can't write the invocation record " << file << '\n';
    }
}

int handleCrash(kelmur_feedback::CrashCommand const& command) {
    auto report = kelmur_feedback::readReportText(command.crashInfoFile);
    report = kelmur_feedback::collectCrashStacks(command, report);
    if (report && kelmur_feedback::environmentValue("KELMUR_FEEDBACK_NO_DUMP").empty()) {
        std::string const why = kelmur_feedback::writeDumpOfReport(*report, command.dumpMemory);
        if (!why.empty()) std::cerr << "kelmur-feedback: no dump of the crash: " << why << '\n';
    }
    if (kelmur_feedback::environmentValue("KELMUR_FEEDBACK_KEEP_REPORT").empty()) {
        report = kelmur_feedback::completeReport(command.crashInfoFile, report);
    }
    kelmur_feedback::printSummary(std::cout, command, report);
    std::cout.flush();
    return requestedExitCode();
}

int mercyKill(kelmur_feedback::MercyKillCommand const& command) {
    if (!norvane_1::os_layer::isProcessAlive(command.processId)) {
        std::cerr << "kelmur-feedback: no running process " << command.processId << " to end\n";
        return 1;
    }
    norvane_1::os_layer::closeProcess(command.processId);
    return 0;
}

struct CommandRunner {
    int operator()(kelmur_feedback::CrashCommand const& command) const { return handleCrash(command); }
    int operator()(kelmur_feedback::CollectCommand const& command) const {
        return kelmur_feedback::completeOnDemandReport(command);
    }
    int operator()(kelmur_feedback::SendCommand const& command) const { return kelmur_feedback::sendReport(command); }
    int operator()(kelmur_feedback::MercyKillCommand const& command) const { return mercyKill(command); }
    int operator()(kelmur_feedback::ExportJsonCommand const& command) const {
        return kelmur_feedback::exportJson(command);
    }
    int operator()(kelmur_feedback::ShowReportCommand const& command) const {
        return kelmur_feedback::showReport(command);
    }
};

}  // namespace

int main(int argc, char** argv) {
    std::int64_t const startedUs = kelmur_feedback::microsecondsSinceEpoch();
    std::vector<std::string> const arguments = kelmur_feedback::programArguments(argc, argv);
    recordInvocation(arguments, startedUs);

    kelmur_feedback::ParseResult const parsed = kelmur_feedback::parseCommandLine(arguments);
    if (!parsed.command) {
        std::cerr << "kelmur-feedback: " << parsed.error << '\n' << kelmur_feedback::usageText();
        return kUsageExitCode;
    }
    return std::visit(CommandRunner{}, *parsed.command);
}
