// Which product failed: "support.txt" of the modules' installations, or the
// product-location service. Portable code only.
#include "report_enrichment.h"

#include <norvane_1/string_traits.h>

#include "logging/logging.h"
#include "report_progress.h"

#include <gavrel2/file_content.h>
#include <gavrel2/path.h>
#include <ostrel2/product_locations.h>

#include <algorithm>

namespace norvane_1 {
namespace internal {
namespace {

constexpr char kDetectLabel[] = "norvane_1::ProblemReportStorage::detectProductInfo";

// "support.txt" lies in the directory above the module's own.
std::wstring supportFileOf(std::wstring const& modulePath) {
    gavrel2::path_t support = gavrel2::path_t(modulePath).get_branch().get_branch();
    support.append(L"support.txt").normalize();
    return support.as_string();
}

std::wstring productInfoFromService() {
    ostrel2::IProductLocations const* service = ostrel2::IProductLocations::get();
    if (service == nullptr) return std::wstring();
    wchar_t const* name = service->getProductDisplayName(9);
    ostrel2::ProductVersion version;
    service->getProductVersion(&version);
    return L"Package ID: N-A\nPackage Contents: " + std::wstring(name ? name : L"") + L"\nBuild Number: " +
           string_traits::numberToString(version.build) + L"\n";
}

}  // namespace

std::wstring detectProductInfo(ModuleInfoList const& modules, wchar_t const* reportPath) {
    NORVANE_LOG_INFO(log::prsLogger(), L"Detecting product info");
    recordProgress(kDetectLabel, L"Detecting product info", reportPath);
    std::wstring result;
    std::vector<std::wstring> seen;
    // Modules of one directory share their file: it is looked for once.
    std::vector<std::wstring> lookedFor;
    for (auto const& module : modules) {
        std::wstring const support = supportFileOf(module.FullName);
        if (std::find(lookedFor.begin(), lookedFor.end(), support) != lookedFor.end()) continue;
        lookedFor.push_back(support);
        if (!gavrel2::path_t::exists(support)) continue;
        std::wstring const text = gavrel2::get_file_content(gavrel2::get_file_cp(support, 0), support, 0);
        if (std::find(seen.begin(), seen.end(), text) != seen.end()) continue;
        result += text;
        seen.push_back(text);
    }
    NORVANE_LOG_INFO(log::prsLogger(), L"Product info from module map: " << result);
    if (result.empty()) {
        recordProgress(kDetectLabel, L"failed to derive product info from module map, fallback to ostrel API",
                       reportPath);
        result = productInfoFromService();
        NORVANE_LOG_INFO(log::prsLogger(), L"Product info from ostrel API: " << result);
    }
    return result;
}

}  // namespace internal
}  // namespace norvane_1
