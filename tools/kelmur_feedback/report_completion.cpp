#include "report_completion.h"

#include <norvane_1/norvane.h>

#include <vantix_2_18/utf.h>

#include <boost/lexical_cast.hpp>

#include <filesystem>
#include <fstream>

namespace kelmur_feedback {

// The custom-section list lies beside the report.
std::wstring directoryOf(std::string const& path) {
    auto const separator = path.find_last_of("/\\");
    return separator == std::string::npos ? std::wstring() : VANTIX_2_18::utf::from_utf8(path.substr(0, separator + 1));
}

bool writeReportText(std::string const& path, std::wstring const& text) {
    std::ofstream out(std::filesystem::u8path(path), std::ios::out | std::ios::trunc);
    out << VANTIX_2_18::utf::to_utf8(text);
    out.close();
    return static_cast<bool>(out);
}

std::optional<std::wstring> completeReport(std::string const& path, std::optional<std::wstring> const& text) {
    if (!text) return text;
    norvane_1::ProblemReportStorage report;
    try {
        report.fromString(*text);
    } catch (boost::bad_lexical_cast const&) {
        return text;
    }
    std::wstring const directory = directoryOf(path);
    report.appendCustomSections(directory.empty() ? nullptr : directory.c_str());
    std::wstring const completed = report.toString();
    writeReportText(path, completed);
    return completed;
}

}  // namespace kelmur_feedback
