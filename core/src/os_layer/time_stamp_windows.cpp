// The time stamp on Windows.
#include <norvane_1/os_layer.h>

#include <sys/timeb.h>

#include <ctime>
#include <cwchar>

namespace norvane_1 {
namespace os_layer {

std::wstring getTimeStamp() {
    __timeb64 now{};
    std::tm local{};
    wchar_t buffer[256];
    if (::_ftime64_s(&now) != 0 || ::_localtime64_s(&local, &now.time) != 0 ||
        std::wcsftime(buffer, 256, L"%Y-%m-%d-%H-%M-%S", &local) == 0) {
        return L"time_stamp";
    }
    return std::wstring(buffer) + L"-" + std::to_wstring(now.millitm);
}

}  // namespace os_layer
}  // namespace norvane_1
