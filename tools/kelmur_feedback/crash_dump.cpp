#include "crash_dump.h"

#include <boost/lexical_cast.hpp>

namespace kelmur_feedback {

namespace {

DumpRequest dumpRequestOf(norvane_1::ProblemReportStorage& report, std::uint32_t dumpMemory) {
    DumpRequest request;
    request.path = report.getDumpValue(L"Path");
    request.processId = report.getCrashedPid();
    request.threadId = report.getCrashedTid();
    request.exception = report.getException();
    auto const context = report.getContextMap().find(request.threadId);
    if (context != report.getContextMap().end()) request.context = context->second;
    request.dumpMemory = dumpMemory;
    return request;
}

}  // namespace

std::string writeDumpOfReport(std::wstring const& reportText, std::uint32_t dumpMemory) {
    norvane_1::ProblemReportStorage report;
    try {
        report.fromString(reportText);
    } catch (boost::bad_lexical_cast const&) {
        return "the report is damaged";
    }
    return writeCrashDump(dumpRequestOf(report, dumpMemory));
}

}  // namespace kelmur_feedback
