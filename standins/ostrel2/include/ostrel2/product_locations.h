// The product-location service of the product's configuration library:
// where the product's programs lie and what the product is called.
//
// The stand-in takes its facts from the environment the first time the
// service is asked for, so that a host (or a test) chooses them by setting
// variables before that:
//
//   KELMUR_PRODUCT_BIN_DIR       directory of the product's programs
//                                (default: the running program's directory)
//   KELMUR_PRODUCT_PREFIX        name prefix of the product's tools (default "kelmur")
//   KELMUR_PRODUCT_DISPLAY_NAME  name shown to users (default: the running
//                                program's name without extension)
//   KELMUR_PRODUCT_VERSION       "major.minor.patch.build" (default "0.0.0.0")
#pragma once

#include <cstdint>

namespace ostrel2 {

struct ProductVersion {
    std::int32_t major = 0;
    std::int32_t minor = 0;
    std::int32_t patch = 0;
    std::int32_t build = 0;
};

class IProductLocations {
public:
    virtual ~IProductLocations() = default;

    // The service; never null in the stand-in.
    static IProductLocations* get();
    // The architecture of the calling process (64 for x86-64).
    static int getArch();

    // Zero-terminated texts that live as long as the process; null when unknown.
    virtual wchar_t const* getProductBinDirectory(int arch) const = 0;
    virtual wchar_t const* getProductPrefix(int kind) const = 0;
    virtual wchar_t const* getProductDisplayName(int kind) const = 0;
    virtual void getProductVersion(ProductVersion* version) const = 0;
};

}  // namespace ostrel2
