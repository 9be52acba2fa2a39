#include "os_layer/windows_version_names.h"

namespace norvane_1 {
namespace os_layer {
namespace {

constexpr wchar_t kUnknown[] = L"<unknown>";
constexpr std::uint8_t kWorkstation = 1;
constexpr std::uint8_t kServer = 3;

// Major versions 10 and 6 tell workstation and server apart.
std::wstring byProductType(std::uint8_t type, wchar_t const* workstation, wchar_t const* server) {
    if (type == kWorkstation) return workstation;
    if (type == kServer) return server;
    return kUnknown;
}

std::wstring version6Name(std::uint32_t minor, std::uint8_t type) {
    switch (minor) {
        case 0: return byProductType(type, L"Windows Vista", L"Windows Server 2008");
        case 1: return byProductType(type, L"Windows 7", L"Windows Server 2008 R2");
        case 2: return byProductType(type, L"Windows 8", L"Windows Server 2012");
        case 3: return byProductType(type, L"Windows 8.1", L"Windows Server 2012 R2");
        default: return kUnknown;
    }
}

// Older systems are told apart by the minor version alone.
std::wstring olderName(std::uint32_t minor) {
    switch (minor) {
        case 0: return L"Windows 95, Windows NT 4.0, Windows 2000";
        case 1: return L"Windows XP ";
        case 2: return L"Windows Server 2003";
        case 10: return L"Windows 98";
        case 90: return L"Windows Me";
        default: return kUnknown;
    }
}

std::wstring versionName(WindowsVersion const& version) {
    if (version.major == 10) {
        if (version.minor != 0) return {};
        return byProductType(version.productType, L"Windows 10", L"Windows Server 2016 Technical Preview");
    }
    if (version.major == 6) return version6Name(version.minor, version.productType);
    return olderName(version.minor);
}

}  // namespace

std::wstring windowsVersionText(WindowsVersion const& version) {
    return versionName(version) + L" " + std::to_wstring(version.major) + L"." + std::to_wstring(version.minor) + L"." +
           std::to_wstring(version.build) + L" " + version.servicePack;
}

}  // namespace os_layer
}  // namespace norvane_1
