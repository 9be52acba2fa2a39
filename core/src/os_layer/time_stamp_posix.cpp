// The time stamp on POSIX.
#include <norvane_1/os_layer.h>

#include <ctime>
#include <cwchar>

namespace norvane_1 {
namespace os_layer {

std::wstring getTimeStamp() {
    timespec now{};
    std::tm local{};
    wchar_t buffer[256];
    if (::clock_gettime(CLOCK_REALTIME, &now) != 0 || ::localtime_r(&now.tv_sec, &local) == nullptr ||
        std::wcsftime(buffer, 256, L"%Y-%m-%d-%H-%M-%S", &local) == 0) {
        return L"time_stamp";
    }
    return std::wstring(buffer) + L"-" + std::to_wstring(now.tv_nsec / 1000000);
}

}  // namespace os_layer
}  // namespace norvane_1
