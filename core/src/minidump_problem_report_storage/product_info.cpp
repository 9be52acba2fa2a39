// Which product failed: "support.txt" of the modules' installations, or the
// product-location service. Portable code only.
#include <norvane_1/crash_handling.h>
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "key_text.h"
#include "logging/logging.h"

#include <gavrel2/file_content.h>
#include <gavrel2/path.h>
#include <ostrel2/product_locations.h>
#include <vantix_2_18/strings.h>

#include <algorithm>

namespace norvane_1 {
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

std::wstring ProblemReportStorage::detectProductInfo() {
    NORVANE_LOG_INFO(log::prsLogger(), L"Detecting product info");
    addCreationLogRecord(kDetectLabel, L"Detecting product info", getReportPath());
    std::wstring result;
    std::vector<std::wstring> seen;
    for (auto const& module : m_moduleInfo) {
        std::wstring const support = supportFileOf(module.FullName);
        if (!gavrel2::path_t::exists(support)) continue;
        std::wstring const text =
            gavrel2::get_file_content(gavrel2::get_file_cp(support, 0), support, 0);
        if (std::find(seen.begin(), seen.end(), text) != seen.end()) continue;
        result += text;
        seen.push_back(text);
    }
    NORVANE_LOG_INFO(log::prsLogger(), L"Product info from module map: " << result);
    if (result.empty()) {
        addCreationLogRecord(kDetectLabel, L"failed to derive product info from module map, fallback to ostrel API",
                             getReportPath());
        result = productInfoFromService();
        NORVANE_LOG_INFO(log::prsLogger(), L"Product info from ostrel API: " << result);
    }
    return result;
}

bool ProblemReportStorage::updateProductInfo() {
    NORVANE_LOG_INFO(log::prsLogger(), L"updateProductInfo: update product info and failed prod name");
    std::wstring const text = detectProductInfo();
    if (text.empty()) return false;
    if (!m_productInfo.empty()) {
        NORVANE_LOG_INFO(log::prsLogger(), L"updateProductInfo: product info already set");
    } else {
        setProductInfo(text);
    }
    if (!m_failedProductName.empty()) {
        NORVANE_LOG_INFO(log::prsLogger(), L"updateProductInfo: failed prod name already set");
    } else {
        setFailedProductName(text);
    }
    return true;
}

void ProblemReportStorage::setProductInfo(std::wstring const& text) {
    std::wstring normalised(text);
    VANTIX_2_18::strings::replace_all(normalised, L"\r\n", L"\n");
    m_productInfo = normalised;
}

std::wstring ProblemReportStorage::getProductInfo() const { return m_productInfo; }

void ProblemReportStorage::setFailedProductName(std::wstring const& productText) {
    static internal::KnownKeys const productKeys({L"Package ID", L"Package Contents", L"Build Number"});
    StringMap keys;
    productKeys.read(productText, keys);
    m_failedProductName = get(keys, L"Package Contents") + L"; " + get(keys, L"Build Number");
}

}  // namespace norvane_1
