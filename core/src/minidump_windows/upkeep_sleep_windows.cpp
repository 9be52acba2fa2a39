// The hook upkeep thread's sleep on Windows (platform.h). Windows code only.
//
// Waiting on the stop flag's address needs no kernel object and so nothing
// made at load, and one call a pass; the wait returns at once when the flag
// no longer reads 0, so a stop set just before is never missed. Under Wine
// it is a futex.
#include "minidump_internal/platform.h"

#include <windows.h>

namespace norvane_1 {
namespace platform {

void sleepUnlessStopped(std::atomic<std::uint32_t> const& stop, std::uint32_t milliseconds) {
    std::uint32_t running = 0;
    ::WaitOnAddress(const_cast<std::atomic<std::uint32_t>*>(&stop), &running, sizeof running, milliseconds);
}

void wakeUpkeepSleep(std::atomic<std::uint32_t>& stop) { ::WakeByAddressAll(&stop); }

}  // namespace platform
}  // namespace norvane_1
