// One run of the sample host crash_host in a scratch directory of its own,
// and what the run left behind: the report, the handler's invocation record,
// the library's log and the host's output.
//
// The log directory has a blank in its path, so that every run also shows
// that paths reach the handler as one argument each. The variables of
// cleared_variables.txt that the test's own environment may hold are removed
// for the host unless the test sets them.
#pragma once

#include "child_process.h"
#include "file_text.h"
#include "test_environment.h"

#include <norvane_1/problem_report_storage.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace crash_test {

class CrashRun {
public:
    CrashRun();

    // A variable for the host; no value removes it.
    void set(std::string const& name, std::optional<std::string> const& value);

    // Starts crash_host with `kind` and waits for its end, at most 60 s.
    norvane_test::ChildOutcome run(std::string const& kind);
    // Starts crash_host with `kind`; the caller waits for it.
    std::unique_ptr<norvane_test::ChildProcess> start(std::string const& kind);
    std::uint32_t hostPid() const { return m_hostPid; }

    std::filesystem::path const& scratch() const { return m_scratch.path(); }
    std::filesystem::path const& logDirectory() const { return m_logDirectory; }
    // A file of the log directory, as text (UTF-8).
    std::string logFile(char const* name) const;

    bool reportWritten() const;
    // A report of the log directory, read with the library's reader.
    norvane_1::ProblemReportStorage readReport(std::string const& name = "crash_info.txt") const;
    // The arguments the handler recorded; nothing if it never started.
    std::optional<std::vector<std::string>> handlerArguments() const;
    // The records of norvane_creation_log.txt, one a line.
    std::vector<std::string> creationLog() const;
    std::string hostOutput() const;

private:
    norvane_test::ScratchDirectory m_scratch;
    std::filesystem::path m_logDirectory;
    std::map<std::string, std::optional<std::string>> m_environment;
    std::uint32_t m_hostPid = 0;
};

}  // namespace crash_test
