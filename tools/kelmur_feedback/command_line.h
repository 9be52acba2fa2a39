// The command line the library gives its crash handler, and its parser.
//
//   -handle-crash -report-system-info -system-info-file <file>
//   -collect-module-info -collect-product-info -crash-info-file <file>
//   -minidump-stack <pid> -dump-memory <n> -load-module-map <pid>
//   [-tcp-port <port>] [-client-certificate <file>]
//   [-client-certificate-key <file>] [-server-certificate <file>]
//
// The library writes it in exactly this order, so anything else is not a
// call from the library and is refused rather than guessed at.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
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

struct ParseResult {
    std::optional<CrashCommand> command;
    std::string error;  // why there is no command
};

// `arguments` are argv[1..], as UTF-8.
ParseResult parseCommandLine(std::vector<std::string> const& arguments);

std::string usageText();

}  // namespace kelmur_feedback
