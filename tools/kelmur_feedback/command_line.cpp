#include "command_line.h"

#include <limits>

namespace kelmur_feedback {
namespace {

constexpr char kTcpPort[] = "-tcp-port";
// The optional pairs, in the only order the library writes them.
constexpr char const* kRelayedOptions[] = {kTcpPort, "-client-certificate", "-client-certificate-key",
                                           "-server-certificate"};
constexpr std::uint32_t kHighestPort = 65535;

// Decimal digits only: no sign, no blanks, no hex, within 32 bits.
std::optional<std::uint32_t> decimal(std::string const& text) {
    if (text.empty()) return std::nullopt;
    std::uint64_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
        if (value > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    }
    return static_cast<std::uint32_t>(value);
}

bool isPort(std::string const& text) {
    std::optional<std::uint32_t> const port = decimal(text);
    return port && *port <= kHighestPort;
}

// Walks the arguments front to back; each step either takes what it expects
// or leaves the reason in error().
class Cursor {
public:
    explicit Cursor(std::vector<std::string> const& arguments) : m_arguments(arguments) {}

    bool atEnd() const { return m_next == m_arguments.size(); }
    bool nextIs(char const* option) const { return !atEnd() && m_arguments[m_next] == option; }
    std::string const& error() const { return m_error; }

    bool flag(char const* option) {
        if (nextIs(option)) {
            ++m_next;
            return true;
        }
        return fail(std::string("expected ") + option + " as " + describeNext());
    }

    bool text(char const* option, std::string& value) {
        if (!flag(option)) return false;
        if (atEnd()) return fail(std::string(option) + " needs a value");
        value = m_arguments[m_next++];
        return true;
    }

    bool number(char const* option, std::uint32_t& value) {
        std::string digits;
        if (!text(option, digits)) return false;
        return decimalValue(option, digits, value);
    }

    // "-option=<decimal>" as one argument.
    bool joinedNumber(char const* option, std::uint32_t& value) {
        std::string const prefix = std::string(option) + "=";
        if (atEnd() || m_arguments[m_next].compare(0, prefix.size(), prefix) != 0) {
            return fail("expected " + prefix + "<number> as " + describeNext());
        }
        return decimalValue(option, m_arguments[m_next++].substr(prefix.size()), value);
    }

    // The next argument as a file name; one that looks like an option is
    // refused rather than taken for a name.
    bool fileName(char const* what, std::string& value) {
        if (atEnd()) return fail(std::string("expected ") + what + " as " + describeNext());
        if (nextStartsWith("-")) return fail(std::string("expected ") + what + ", not an option, as " + describeNext());
        value = m_arguments[m_next++];
        return true;
    }

    bool nextStartsWith(char const* prefix) const { return !atEnd() && m_arguments[m_next].rfind(prefix, 0) == 0; }

    bool decimalValue(char const* option, std::string const& digits, std::uint32_t& value) {
        std::optional<std::uint32_t> const parsed = decimal(digits);
        if (!parsed) return fail(std::string(option) + " needs a decimal number, found '" + digits + "'");
        value = *parsed;
        return true;
    }

    bool fail(std::string reason) {
        m_error = std::move(reason);
        return false;
    }

    std::string describeNext() const {
        std::string const position = "argument " + std::to_string(m_next + 1);
        return atEnd() ? position + ", found the end" : position + ", found '" + m_arguments[m_next] + "'";
    }

private:
    std::vector<std::string> const& m_arguments;
    std::size_t m_next = 0;
    std::string m_error;
};

bool readFixedPart(Cursor& cursor, CrashCommand& command) {
    return cursor.flag("-handle-crash") && cursor.flag("-report-system-info") &&
           cursor.text("-system-info-file", command.systemInfoFile) && cursor.flag("-collect-module-info") &&
           cursor.flag("-collect-product-info") && cursor.text("-crash-info-file", command.crashInfoFile) &&
           cursor.number("-minidump-stack", command.minidumpStack) &&
           cursor.number("-dump-memory", command.dumpMemory) &&
           cursor.number("-load-module-map", command.loadModuleMap);
}

bool readRelayedPart(Cursor& cursor, CrashCommand& command) {
    for (char const* option : kRelayedOptions) {
        if (!cursor.nextIs(option)) continue;
        std::string value;
        if (!cursor.text(option, value)) return false;
        if (std::string(option) == kTcpPort && !isPort(value)) {
            return cursor.fail(std::string(kTcpPort) + " needs a port number, found '" + value + "'");
        }
        command.relayed.push_back({option, value});
    }
    // A repeated pair, one out of order or an unknown option is left over.
    return cursor.atEnd() || cursor.fail("unexpected " + cursor.describeNext());
}

bool readCollectCommand(Cursor& cursor, CollectCommand& command) {
    return cursor.flag("-report-system-info") && cursor.flag("-collect-module-info") &&
           cursor.flag("-collect-product-info") && cursor.text("-crash-info-file", command.crashInfoFile) &&
           (!cursor.nextStartsWith("-dump-stack=") || cursor.joinedNumber("-dump-stack", command.dumpStack)) &&
           cursor.joinedNumber("-dump-memory", command.dumpMemory);
}

bool readSendCommand(Cursor& cursor, SendCommand& command) {
    return cursor.text("-send-crash-report", command.crashInfoFile) && cursor.text("-send-crash-report", command.title);
}

bool readMercyKillCommand(Cursor& cursor, MercyKillCommand& command) {
    if (!cursor.joinedNumber("-mercy-kill", command.processId)) return false;
    if (command.processId == 0) return cursor.fail("-mercy-kill needs a process id other than 0");
    return true;
}

bool readExportJsonCommand(Cursor& cursor, ExportJsonCommand& command) {
    return cursor.flag("-export-json") && cursor.fileName("a report file", command.reportFile) &&
           (cursor.atEnd() || cursor.fileName("a JSON file", command.jsonFile));
}

bool readShowReportCommand(Cursor& cursor, ShowReportCommand& command) {
    return cursor.flag("-show-report") && cursor.fileName("a report file", command.reportFile);
}

bool atEndOrFail(Cursor& cursor) { return cursor.atEnd() || cursor.fail("unexpected " + cursor.describeNext()); }

// The first argument tells the command lines apart.
template <typename CommandType, typename Reader>
ParseResult parseAs(std::vector<std::string> const& arguments, Reader read) {
    Cursor cursor(arguments);
    CommandType command;
    if (read(cursor, command) && atEndOrFail(cursor)) return {Command(command), {}};
    return {std::nullopt, cursor.error()};
}

}  // namespace

ParseResult parseCommandLine(std::vector<std::string> const& arguments) {
    std::string const first = arguments.empty() ? std::string() : arguments.front();
    if (first == "-report-system-info") return parseAs<CollectCommand>(arguments, readCollectCommand);
    if (first == "-send-crash-report") return parseAs<SendCommand>(arguments, readSendCommand);
    if (first.rfind("-mercy-kill", 0) == 0) return parseAs<MercyKillCommand>(arguments, readMercyKillCommand);
    if (first == "-export-json") return parseAs<ExportJsonCommand>(arguments, readExportJsonCommand);
    if (first == "-show-report") return parseAs<ShowReportCommand>(arguments, readShowReportCommand);
    return parseAs<CrashCommand>(arguments, [](Cursor& cursor, CrashCommand& command) {
        return readFixedPart(cursor, command) && readRelayedPart(cursor, command);
    });
}

std::string usageText() {
    return "usage: kelmur-feedback -handle-crash -report-system-info -system-info-file <file>\n"
           "         -collect-module-info -collect-product-info -crash-info-file <file>\n"
           "         -minidump-stack <pid> -dump-memory <n> -load-module-map <pid>\n"
           "         [-tcp-port <port>] [-client-certificate <file>]\n"
           "         [-client-certificate-key <file>] [-server-certificate <file>]\n"
           "       kelmur-feedback -report-system-info -collect-module-info -collect-product-info\n"
           "         -crash-info-file <file> [-dump-stack=<pid>] -dump-memory=0\n"
           "       kelmur-feedback -send-crash-report <file> -send-crash-report <title>\n"
           "       kelmur-feedback -mercy-kill=<pid>\n"
           "       kelmur-feedback -export-json <report-file> [<json-file>]\n"
           "       kelmur-feedback -show-report <report-file>\n"
           "The crash-handling library starts this program; numbers are decimal. -export-json\n"
           "prints a report as JSON, or writes it to <json-file>. -show-report prints a report\n"
           "for a person, with its stacks' functions and source lines where they are known.\n";
}

}  // namespace kelmur_feedback
