#include "report_view.h"

#include "report_file.h"
#include "stack_view.h"

#include <vantix_2_18/utf.h>

#include <cinttypes>
#include <cstdio>
#include <iostream>

namespace kelmur_feedback {
namespace {

using VANTIX_2_18::utf::to_utf8;

// Addresses in lower case, as the stacks show them; codes in upper case,
// as they are usually written.
std::string hex(std::uint64_t value, int digits, bool upper = false) {
    char text[32];
    std::snprintf(text, sizeof text, upper ? "0x%0*" PRIX64 : "0x%0*" PRIx64, digits, value);
    return text;
}

std::string orUnknown(std::wstring const& text) { return text.empty() ? "unknown" : to_utf8(text); }

// The report names the exception's module only once the handler has
// matched it against the module list; until then the list itself tells.
std::string exceptionModule(norvane_1::ProblemReportStorage& report) {
    norvane_1::Exception const& exception = report.getException();
    norvane_1::ModuleInfo module;
    if (!exception.module.empty() || !report.findModule(exception.address, module)) {
        return orUnknown(exception.module);
    }
    return fileNameOf(module.FullName);
}

norvane_1::StringMap sectionKeys(norvane_1::ProblemReportStorage& report, wchar_t const* section) {
    norvane_1::StringMap keys;
    norvane_1::processSectionToMap(report.getSection(section), keys, {});
    return keys;
}

std::string decoded(norvane_1::StringMap const& keys, wchar_t const* key) {
    return to_utf8(norvane_1::string_traits::decodeString(norvane_1::get(keys, key)));
}

// Type and what() of a C++ exception that nothing caught, when the library
// could still tell them.
void printUncaughtException(std::ostream& out, norvane_1::ProblemReportStorage& report) {
    norvane_1::StringMap const keys = sectionKeys(report, L"UncaughtException");
    if (keys.empty()) return;
    out << "Uncaught C++ exception " << decoded(keys, L"Type") << ": " << decoded(keys, L"What") << '\n';
}

void printProblem(std::ostream& out, norvane_1::ProblemReportStorage& report) {
    if (report.isAssertion()) {
        norvane_1::Assertion const& assertion = report.getAssertion();
        out << "Assertion failed: " << orUnknown(assertion.expression) << "\n  at " << orUnknown(assertion.file) << ':'
            << assertion.line << '\n';
    } else if (report.isProcessDump()) {
        norvane_1::ProcessDump const& dump = report.getProcessDump();
        out << "Report on a live process: " << orUnknown(dump.description) << '\n';
    } else {
        norvane_1::Exception const& exception = report.getException();
        out << "Exception " << hex(exception.code, 8, true) << ' ' << orUnknown(exception.description) << '\n'
            << "  at " << hex(exception.address, 16) << " in " << exceptionModule(report) << '\n';
    }
    std::wstring const name = norvane_1::get(sectionKeys(report, L"Process"), L"Process Name");
    out << "Process " << orUnknown(name) << ", pid " << report.getCrashedPid() << ", thread " << report.getCrashedTid()
        << '\n';
    printUncaughtException(out, report);
}

}  // namespace

void printReportView(std::ostream& out, norvane_1::ProblemReportStorage& report, Symbolizer& symbolizer) {
    printProblem(out, report);
    printStacks(out, report, symbolizer);
}

int showReport(ShowReportCommand const& command) {
    norvane_1::ProblemReportStorage report;
    std::string const why = loadReportFile(command.reportFile, report);
    if (!why.empty()) {
        std::cerr << "kelmur-feedback: " << why << '\n';
        return 1;
    }
    std::unique_ptr<Symbolizer> const symbolizer = makeSymbolizer();
    printReportView(std::cout, report, *symbolizer);
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace kelmur_feedback
