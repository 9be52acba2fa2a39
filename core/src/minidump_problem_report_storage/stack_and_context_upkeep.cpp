// Adding and clearing the contexts and stacks of a report. Portable code only.
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "logging/logging.h"
#include "report_progress.h"

namespace norvane_1 {
namespace {

// The progress record and the log line of an addition. Both go out even
// when the map then keeps an earlier record for the thread.
void announce(char const* label, wchar_t const* prefix, std::uint32_t threadId, wchar_t const* reportPath) {
    internal::recordProgress(label, prefix + string_traits::addrToString(threadId), reportPath);
    NORVANE_LOG_INFO(log::prsLogger(), prefix << threadId);
}

}  // namespace

void ProblemReportStorage::addContext(Context const& context, std::uint32_t threadId) {
    announce("norvane_1::ProblemReportStorage::addContext", L"Added context for thread: ", threadId, getReportPath());
    m_contextMap.insert({threadId, context});
}

void ProblemReportStorage::addStack(RawStack const& stack, std::uint32_t threadId) {
    announce("norvane_1::ProblemReportStorage::addStack", L"Added raw stack for thread: ", threadId, getReportPath());
    m_stackMap.insert({threadId, stack});
}

void ProblemReportStorage::addStack(CleanStack const& frames, std::uint32_t threadId) {
    announce("norvane_1::ProblemReportStorage::addStack", L"Added clean stack for thread: ", threadId, getReportPath());
    m_stackFramesMap.insert({threadId, frames});
}

void ProblemReportStorage::clearContexts() { m_contextMap.clear(); }

void ProblemReportStorage::clearStacks() {
    m_stackMap.clear();
    m_stackFramesMap.clear();
}

}  // namespace norvane_1
