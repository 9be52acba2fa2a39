#include "crash_run.h"

#include "cleared_variables.h"
#include "file_text.h"

#include <vantix_2_18/utf.h>

#include <chrono>
#include <stdexcept>

namespace crash_test {
namespace {

constexpr std::chrono::seconds kHostTimeLimit{60};
constexpr char kHandlerRecord[] = "handler record.txt";
constexpr char kHostOutput[] = "host output.txt";
constexpr char kStartedPrefix[] = "started-us: ";

}  // namespace

CrashRun::CrashRun() : m_scratch("crash"), m_logDirectory(m_scratch.path() / "log dir") {
    for (char const* variable : norvane_test::kClearedVariables) m_environment[variable] = std::nullopt;
    set("NORVANE_LOG_DIR", m_logDirectory.u8string());
    set("KELMUR_FEEDBACK_RECORD", (m_scratch.path() / kHandlerRecord).u8string());
    // The minidump costs seconds under Wine; the tests of the dump ask for it.
    set("KELMUR_FEEDBACK_NO_DUMP", std::string("1"));
}

void CrashRun::set(std::string const& name, std::optional<std::string> const& value) { m_environment[name] = value; }

std::unique_ptr<norvane_test::ChildProcess> CrashRun::start(std::string const& kind) {
    norvane_test::ChildOptions options;
    options.program = norvane_test::programBesideThisOne("crash_host");
    options.arguments = {kind};
    options.environment = m_environment;
    options.standardOutput = m_scratch.path() / kHostOutput;
    auto host = std::make_unique<norvane_test::ChildProcess>(options);
    m_hostPid = host->pid();
    return host;
}

norvane_test::ChildOutcome CrashRun::run(std::string const& kind) { return start(kind)->wait(kHostTimeLimit); }

std::string CrashRun::logFile(char const* name) const { return norvane_test::fileText(m_logDirectory / name); }

bool CrashRun::reportWritten() const { return std::filesystem::exists(m_logDirectory / "crash_info.txt"); }

norvane_1::ProblemReportStorage CrashRun::readReport(std::string const& name) const {
    norvane_1::ProblemReportStorage report;
    report.fromString(VANTIX_2_18::utf::from_utf8(logFile(name.c_str())));
    return report;
}

std::optional<std::vector<std::string>> CrashRun::handlerArguments() const {
    std::filesystem::path const record = m_scratch.path() / kHandlerRecord;
    if (!std::filesystem::exists(record)) return std::nullopt;
    std::vector<std::string> lines = norvane_test::fileLines(record);
    if (lines.empty() || lines.back().rfind(kStartedPrefix, 0) != 0) {
        throw std::runtime_error("the handler record has no start time");
    }
    lines.pop_back();
    return lines;
}

std::vector<std::string> CrashRun::creationLog() const {
    return norvane_test::fileLines(m_logDirectory / "norvane_creation_log.txt");
}

std::string CrashRun::hostOutput() const { return norvane_test::fileText(m_scratch.path() / kHostOutput); }

}  // namespace crash_test
