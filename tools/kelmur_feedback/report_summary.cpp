#include "report_summary.h"

#include <norvane_1/norvane.h>

#include <vantix_2_18/strings.h>
#include <vantix_2_18/utf.h>

#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace kelmur_feedback {
namespace {

using VANTIX_2_18::utf::to_utf8;

std::string hex(std::uint64_t value, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%0*" PRIX64, digits, value);
    return text;
}

// Counts "[Name]" lines, the way the report separates its sections.
std::size_t countSections(std::wstring const& text) {
    std::size_t count = 0;
    std::wistringstream lines(text);
    for (std::wstring line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == L'\r') line.pop_back();
        if (line.size() > 2 && line.front() == L'[' && line.back() == L']') ++count;
    }
    return count;
}

std::string processName(norvane_1::ProblemReportStorage& report) {
    norvane_1::StringMap keys;
    norvane_1::processSectionToMap(report.getSection(L"Process"), keys, {});
    std::wstring const name = norvane_1::get(keys, L"Process Name");
    return name.empty() ? "unknown process" : to_utf8(name);
}

std::string orUnknown(std::wstring const& text) { return text.empty() ? "unknown" : to_utf8(text); }

void printReport(std::ostream& out, std::wstring const& text) {
    norvane_1::ProblemReportStorage report;
    try {
        report.fromString(text);
    } catch (std::exception const& damaged) {
        out << "  the report is damaged: " << damaged.what() << '\n';
        return;
    }
    norvane_1::Exception const& exception = report.getException();
    out << "  exception: " << orUnknown(exception.description) << " (code " << hex(exception.code, 8) << ")\n"
        << "  address:   " << hex(exception.address, 16) << " in " << orUnknown(exception.module) << '\n'
        << "  process:   " << processName(report) << " (pid " << report.getCrashedPid() << ", thread "
        << report.getCrashedTid() << ")\n"
        << "  dump:      " << orUnknown(report.getDumpValue(L"Path")) << '\n'
        << "  product:   " << orUnknown(report.getFailedProductName()) << '\n'
        << "  sections:  " << countSections(text) << '\n';
}

void printCommand(std::ostream& out, CrashCommand const& command) {
    out << "  stack:     ";
    if (command.minidumpStack == 0) {
        out << "in the report\n";
    } else {
        out << "to be read from process " << command.minidumpStack << '\n';
    }
    out << "  relayed:   ";
    if (command.relayed.empty()) out << "nothing";
    for (std::size_t i = 0; i < command.relayed.size(); ++i) {
        out << (i == 0 ? "" : ", ") << command.relayed[i].option << ' ' << command.relayed[i].value;
    }
    out << '\n';
}

}  // namespace

std::optional<std::wstring> readReportText(std::string const& path) {
    std::ifstream in(std::filesystem::u8path(path), std::ios::binary);
    if (!in) return std::nullopt;
    std::string const bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    // A report written on Windows has CR LF line ends; in memory a report
    // has LF alone, and the file is written again in text mode.
    std::wstring text = VANTIX_2_18::utf::from_utf8(bytes);
    VANTIX_2_18::strings::replace_all(text, L"\r\n", L"\n");
    return text;
}

void printSummary(std::ostream& out, CrashCommand const& command, std::optional<std::wstring> const& reportText) {
    if (reportText) {
        out << "kelmur-feedback: crash report " << command.crashInfoFile << '\n';
        printReport(out, *reportText);
    } else {
        out << "kelmur-feedback: no crash report could be read at " << command.crashInfoFile << '\n';
    }
    printCommand(out, command);
}

}  // namespace kelmur_feedback
