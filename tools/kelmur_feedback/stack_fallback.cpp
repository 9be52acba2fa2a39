#include "stack_fallback.h"

#include "report_completion.h"
#include "report_summary.h"

#include <norvane_1/norvane.h>

#include <vantix_2_18/utf.h>

#include <boost/lexical_cast.hpp>

namespace kelmur_feedback {
namespace {

// On Windows the service's pipe has one name for the whole machine: a
// second process crashing at the same moment may answer in place of ours,
// and collect its own stack. Asking again reaches ours.
constexpr int kAttempts = 3;

}  // namespace

bool holdsCrashedStack(std::wstring const& reportText) {
    norvane_1::ProblemReportStorage report;
    try {
        report.fromString(reportText);
    } catch (boost::bad_lexical_cast const&) {
        return false;
    }
    std::uint32_t const thread = report.getCrashedTid();
    return report.getStackFramesMap().count(thread) != 0 || report.getStackMap().count(thread) != 0;
}

std::optional<std::wstring> collectMissingStack(CrashCommand const& command, std::optional<std::wstring> report) {
    if (command.minidumpStack == 0 || !report || holdsCrashedStack(*report)) return report;
    std::wstring const directory = directoryOf(command.crashInfoFile);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (!norvane_1::executeMinidumpTask(norvane_1::fallbackInProc, nullptr, 0,
                                            directory.empty() ? nullptr : directory.c_str())) {
            break;
        }
        report = readReportText(command.crashInfoFile);
        if (!report || holdsCrashedStack(*report)) break;
    }
    return report;
}

}  // namespace kelmur_feedback
