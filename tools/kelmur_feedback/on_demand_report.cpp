#include "on_demand_report.h"

#include "outside_report.h"
#include "report_completion.h"
#include "report_summary.h"

#include <norvane_1/norvane.h>

#include <boost/lexical_cast.hpp>

#include <iostream>
#include <regex>

namespace kelmur_feedback {
namespace {

int fail(std::string const& why) {
    std::cerr << "kelmur-feedback: " << why << '\n';
    return 1;
}

// The process of a report named "report-<pid>-<stamp>.txt"; 0 if the name
// has no such form.
std::uint32_t processOfFileName(std::string const& path) {
    std::smatch match;
    static std::regex const form(R"((^|[/\\])report-(\d{1,10})-[^/\\]*\.txt$)");
    if (!std::regex_search(path, match, form)) return 0;
    unsigned long long const pid = std::stoull(match[2].str());
    return pid <= 0xFFFFFFFFull ? static_cast<std::uint32_t>(pid) : 0;
}

}  // namespace

int completeOnDemandReport(CollectCommand const& command) {
    std::uint32_t const processId = command.dumpStack != 0 ? command.dumpStack
                                                           : processOfFileName(command.crashInfoFile);
    if (processId == 0) return fail("no process named: neither -dump-stack=<pid> nor a report-<pid>-... file name");
    if (!norvane_1::os_layer::isProcessAlive(processId)) return fail("no running process " + std::to_string(processId));
    auto const text = readReportText(command.crashInfoFile);
    if (!text) return fail("no report could be read at " + command.crashInfoFile);

    norvane_1::ProblemReportStorage report;
    try {
        report.fromString(*text);
    } catch (boost::bad_lexical_cast const&) {
        return fail("the report at " + command.crashInfoFile + " is damaged");
    }
    addOutsideModules(report, processId);
    report.updateProductInfo();
    if (command.dumpStack != 0) {
        std::string const error = addOutsideStacks(report, processId).error;
        if (!error.empty()) std::cerr << "kelmur-feedback: stacks of process " << processId << ": " << error << '\n';
    }
    report.updateModuleMap();
    std::wstring const directory = directoryOf(command.crashInfoFile);
    report.appendCustomSections(directory.empty() ? nullptr : directory.c_str());
    if (!writeReportText(command.crashInfoFile, report.toString())) {
        return fail("the report could not be written back to " + command.crashInfoFile);
    }
    return 0;
}

}  // namespace kelmur_feedback
