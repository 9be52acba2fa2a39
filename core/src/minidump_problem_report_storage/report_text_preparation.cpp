// Readying the report codecs before a crash. Portable code only.
#include "report_text_preparation.h"

#include <norvane_1/problem_report_storage.h>

namespace norvane_1 {
namespace internal {

namespace {

// One section of each kind whose reader keeps a key list of its own, with a
// value that needs escaping.
constexpr wchar_t kEveryReader[] =
    L"[Exception]\nModule: a&#32;b\n\n[Assertion]\nExpression: a\n\n[Module001]\nBase: 0x0000000000000000\n\n";

}  // namespace

void prepareReportText() {
    ProblemReportStorage report;
    report.fromString(kEveryReader);
    report.setFailedProductName(L"Package Contents: a\n");
    (void)report.toString();
}

}  // namespace internal
}  // namespace norvane_1
