#include "ostrel2/product_locations.h"

#include <gavrel2/environment.h>
#include <gavrel2/stdpaths.h>

#include <string>

namespace ostrel2 {
namespace {

std::wstring valueOr(wchar_t const* variable, std::wstring const& fallback) {
    std::wstring const value = gavrel2::get_environ_value(variable);
    return value.empty() ? fallback : value;
}

std::wstring programStem() {
    std::wstring leaf = gavrel2::stdpaths::get_program_path().get_leaf();
    auto const dot = leaf.rfind(L'.');
    return dot == std::wstring::npos ? leaf : leaf.substr(0, dot);
}

ProductVersion parseVersion(std::wstring const& text) {
    std::int32_t parts[4] = {0, 0, 0, 0};
    std::size_t part = 0;
    for (wchar_t c : text) {
        if (c == L'.') {
            if (++part == 4) break;
        } else if (c >= L'0' && c <= L'9') {
            parts[part] = parts[part] * 10 + (c - L'0');
        }
    }
    ProductVersion version;
    version.major = parts[0];
    version.minor = parts[1];
    version.patch = parts[2];
    version.build = parts[3];
    return version;
}

class EnvironmentProductLocations final : public IProductLocations {
public:
    EnvironmentProductLocations()
        : m_binDirectory(
              valueOr(L"KELMUR_PRODUCT_BIN_DIR", gavrel2::stdpaths::get_program_path().get_branch().as_string())),
          m_prefix(valueOr(L"KELMUR_PRODUCT_PREFIX", L"kelmur")),
          m_displayName(valueOr(L"KELMUR_PRODUCT_DISPLAY_NAME", programStem())),
          m_version(parseVersion(valueOr(L"KELMUR_PRODUCT_VERSION", L"0.0.0.0"))) {}

    wchar_t const* getProductBinDirectory(int) const override {
        return m_binDirectory.empty() ? nullptr : m_binDirectory.c_str();
    }
    wchar_t const* getProductPrefix(int) const override { return m_prefix.c_str(); }
    wchar_t const* getProductDisplayName(int) const override { return m_displayName.c_str(); }
    void getProductVersion(ProductVersion* version) const override {
        if (version != nullptr) *version = m_version;
    }

private:
    std::wstring const m_binDirectory;
    std::wstring const m_prefix;
    std::wstring const m_displayName;
    ProductVersion const m_version;
};

}  // namespace

IProductLocations* IProductLocations::get() {
    static EnvironmentProductLocations service;
    return &service;
}

int IProductLocations::getArch() { return static_cast<int>(sizeof(void*) * 8); }

}  // namespace ostrel2
