#include "report_file.h"

#include "report_json.h"
#include "report_summary.h"

namespace kelmur_feedback {

std::string loadReportFile(std::string const& path, norvane_1::ProblemReportStorage& report) {
    std::optional<std::wstring> const text = readReportText(path);
    if (!text) return "no report could be read at " + path;
    try {
        report.fromString(*text);
    } catch (std::exception const& damaged) {
        return "the report at " + path + " is damaged: " + damaged.what();
    }
    if (sectionNames(report, *text).empty()) return path + " holds no report sections";
    return {};
}

}  // namespace kelmur_feedback
