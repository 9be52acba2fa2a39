#include "report_fuzz_entry.h"

#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include <vantix_2_18/strings.h>
#include <vantix_2_18/utf.h>

#include <boost/lexical_cast.hpp>

#include <string>

namespace norvane_fuzz {
namespace {

void readAsReport(std::wstring const& text) {
    norvane_1::ProblemReportStorage report;
    try {
        report.fromString(text);
    } catch (boost::bad_lexical_cast const&) {
        // A damaged "CrashedPID", "CrashedTID" or "Line": the one documented failure.
    }
    norvane_1::ProblemReportStorage again;
    try {
        again.fromString(report.toString());
    } catch (boost::bad_lexical_cast const&) {
    }
}

void readAsKeyText(std::wstring const& text) {
    norvane_1::StringMap out;
    norvane_1::processSectionToMap(text, out, {});
    norvane_1::processSectionToMap(text, out, {L"Package ID", L"Package Contents", L"Build Number"});
    auto const firstLine = text.substr(0, text.find(L'\n'));
    norvane_1::processSectionToMap(text, out, VANTIX_2_18::strings::split_string(firstLine, L"|", 0));
    norvane_1::string_traits::decodeString(norvane_1::string_traits::encodeString(text));
}

}  // namespace

void readReportText(std::uint8_t const* data, std::size_t size) {
    std::wstring const text =
        VANTIX_2_18::utf::from_utf8(std::string(reinterpret_cast<char const*>(data), size));
    readAsReport(text);
    readAsKeyText(text);
}

}  // namespace norvane_fuzz
