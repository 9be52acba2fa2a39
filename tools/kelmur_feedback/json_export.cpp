#include "json_export.h"

#include "report_file.h"
#include "report_json.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace kelmur_feedback {
namespace {

constexpr int kIndent = 2;

int fail(std::string const& reason) {
    std::cerr << "kelmur-feedback: " << reason << '\n';
    return 1;
}

// Text the tool read with a character it couldn't decode is written with
// U+FFFD there rather than refused.
std::string jsonText(Json const& json) { return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n"; }

bool sameFile(std::string const& first, std::string const& second) {
    std::error_code error;
    return std::filesystem::equivalent(std::filesystem::u8path(first), std::filesystem::u8path(second), error);
}

}  // namespace

int exportJson(ExportJsonCommand const& command) {
    norvane_1::ProblemReportStorage report;
    std::string const why = loadReportFile(command.reportFile, report);
    if (!why.empty()) return fail(why);

    std::string const json = jsonText(reportToJson(report));
    if (command.jsonFile.empty()) {
        std::cout << json << std::flush;
        return std::cout ? 0 : fail("the JSON could not be written to standard output");
    }
    if (sameFile(command.reportFile, command.jsonFile)) {
        return fail("the JSON would overwrite the report " + command.reportFile);
    }
    std::ofstream out(std::filesystem::u8path(command.jsonFile), std::ios::binary | std::ios::trunc);
    if (!out.write(json.data(), static_cast<std::streamsize>(json.size())) || !out.flush()) {
        return fail("the JSON could not be written to " + command.jsonFile);
    }
    return 0;
}

}  // namespace kelmur_feedback
