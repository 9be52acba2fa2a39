#include "crash_stacks.h"

#include "outside_report.h"
#include "process_text.h"
#include "report_completion.h"
#include "stack_fallback.h"

#include <norvane_1/norvane.h>

#include <boost/lexical_cast.hpp>

namespace kelmur_feedback {
namespace {

constexpr char kLabel[] = "kelmur_feedback::collectCrashStacks";

void record(CrashCommand const& command, std::wstring const& text) {
    std::wstring const directory = directoryOf(command.crashInfoFile);
    norvane_1::addCreationLogRecord(kLabel, text, directory.empty() ? nullptr : directory.c_str());
}

std::wstring wide(std::string const& text) { return std::wstring(text.begin(), text.end()); }

// The frame at the fault is the exception's own, as in a stack collected
// in-process.
constexpr std::uint32_t kExceptionFrame = 4;

void markExceptionFrame(norvane_1::ProblemReportStorage& report, std::uint32_t threadId) {
    norvane_1::CleanStack& frames = report.getStackFramesMap()[threadId];
    if (!frames.empty() && frames.front().address == report.getException().address)
        frames.front().kind = kExceptionFrame;
}

// The crashed thread starts from the registers of its fault.
StartingPoints faultOf(norvane_1::ProblemReportStorage& report) {
    StartingPoints start;
    auto const context = report.getContextMap().find(report.getCrashedTid());
    if (context != report.getContextMap().end()) start.emplace(context->first, context->second);
    return start;
}

}  // namespace

std::optional<std::wstring> collectCrashStacks(CrashCommand const& command, std::optional<std::wstring> report) {
    if (command.minidumpStack == 0 || !report) return report;
    norvane_1::ProblemReportStorage storage;
    try {
        storage.fromString(*report);
    } catch (boost::bad_lexical_cast const&) {
        return collectMissingStack(command, report);
    }
    StartingPoints const start = faultOf(storage);
    AddedStacks added;
    if (environmentValue("KELMUR_FEEDBACK_NO_OUTSIDE_STACKS").empty()) {
        addOutsideModules(storage, command.minidumpStack);
        added = addOutsideStacks(storage, command.minidumpStack, start);
    } else {
        added.error = "not asked for (KELMUR_FEEDBACK_NO_OUTSIDE_STACKS)";
    }
    if (start.empty() || !added.gotThread(start.begin()->first)) {
        record(command, L"Stacks from outside failed (" +
                            wide(added.error.empty() ? "no stack of the crashed thread" : added.error) +
                            L"), asking the crashed process");
        return collectMissingStack(command, report);
    }
    markExceptionFrame(storage, start.begin()->first);
    // The debug identities of the modules the new stacks touch.
    storage.updateModuleMap();
    record(command, L"Stacks of " + std::to_wstring(added.threadIds.size()) + L" threads collected from outside");
    std::wstring text = storage.toString();
    writeReportText(command.crashInfoFile, text);
    return text;
}

}  // namespace kelmur_feedback
