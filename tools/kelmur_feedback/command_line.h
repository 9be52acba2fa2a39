// The command lines the library gives its feedback tool, and their parser.
//
// After a crash (CrashCommand):
//   -handle-crash -report-system-info -system-info-file <file>
//   -collect-module-info -collect-product-info -crash-info-file <file>
//   -minidump-stack <pid> -dump-memory <n> -load-module-map <pid>
//   [-tcp-port <port>] [-client-certificate <file>]
//   [-client-certificate-key <file>] [-server-certificate <file>]
//
// For an on-demand report of a live process (CollectCommand); the process
// is the one of -dump-stack, or else the one the report's file name holds
// ("report-<pid>-<stamp>.txt"):
//   -report-system-info -collect-module-info -collect-product-info
//   -crash-info-file <file> [-dump-stack=<pid>] -dump-memory=0
//
// To send a report (SendCommand):
//   -send-crash-report <file> -send-crash-report <title>
//
// To end a process, politely first (MercyKillCommand):
//   -mercy-kill=<pid>
//
// The library writes each in exactly this order, so anything else is not a
// call from the library and is refused rather than guessed at.
//
// For people and scripts, a report as JSON (ExportJsonCommand), on standard
// output or into a file:
//   -export-json <report file> [<json file>]
//
// For a person, a report as text with its stacks named (ShowReportCommand):
//   -show-report <report file>
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kelmur_feedback {

// An option the library passes on from its environment without reading it.
struct RelayedOption {
    std::string option;  // "-tcp-port", ...
    std::string value;
};

struct CrashCommand {
    std::string systemInfoFile;
    std::string crashInfoFile;
    std::uint32_t minidumpStack = 0;  // 0: the report holds the stack already
    std::uint32_t dumpMemory = 0;
    std::uint32_t loadModuleMap = 0;
    std::vector<RelayedOption> relayed;  // in command-line order
};

struct CollectCommand {
    std::string crashInfoFile;
    std::uint32_t dumpStack = 0;  // 0: no stacks wanted
    std::uint32_t dumpMemory = 0;
};

struct SendCommand {
    std::string crashInfoFile;
    std::string title;
};

struct MercyKillCommand {
    std::uint32_t processId = 0;
};

struct ExportJsonCommand {
    std::string reportFile;
    std::string jsonFile;  // empty: standard output
};

struct ShowReportCommand {
    std::string reportFile;
};

using Command =
    std::variant<CrashCommand, CollectCommand, SendCommand, MercyKillCommand, ExportJsonCommand, ShowReportCommand>;

struct ParseResult {
    std::optional<Command> command;
    std::string error;  // why there is no command
};

// `arguments` are argv[1..], as UTF-8.
ParseResult parseCommandLine(std::vector<std::string> const& arguments);

std::string usageText();

}  // namespace kelmur_feedback
