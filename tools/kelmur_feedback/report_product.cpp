#include "report_product.h"

#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include <vantix_2_18/strings.h>
#include <vantix_2_18/utf.h>

namespace kelmur_feedback {

std::string productOf(std::string const& reportBytes) {
    std::wstring text = VANTIX_2_18::utf::from_utf8(reportBytes);
    VANTIX_2_18::strings::replace_all(text, L"\r\n", L"\n");
    norvane_1::ProblemReportStorage report;
    try {
        report.fromString(text);
    } catch (std::exception const&) {
        // A damaged id ends the reading of records, not of sections: the
        // products section is there all the same.
    }
    norvane_1::StringMap products;
    norvane_1::processSectionToMap(report.getSection(L"Products"), products, {});
    std::wstring const name = norvane_1::get(products, L"Package Contents");
    return VANTIX_2_18::utf::to_utf8(name.empty() ? report.getFailedProductName() : name);
}

}  // namespace kelmur_feedback
