// The name of a Windows version, from the numbers of its version record.
// Portable, so that the table is tested on every platform; only the Windows
// build feeds it a real record.
#pragma once

#include <cstdint>
#include <string>

namespace norvane_1 {
namespace os_layer {

struct WindowsVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
    std::uint8_t productType = 0;  // 1 workstation, 2 domain controller, 3 server
    std::wstring servicePack;
};

// "<name> <major>.<minor>.<build> <service pack>". A version the table has
// no name for begins with the blank; one without a service pack ends in it.
std::wstring windowsVersionText(WindowsVersion const& version);

}  // namespace os_layer
}  // namespace norvane_1
