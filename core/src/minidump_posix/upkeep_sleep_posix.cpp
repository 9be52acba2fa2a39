// The hook upkeep thread's sleep on Linux (platform.h). POSIX code only.
//
// A condition variable would cost two system calls a pass and a clock read:
// glibc takes the mutex back after the wait as if contended, and its unlock
// then wakes nobody in the kernel. A futex on the stop flag is one call: the
// kernel sleeps only while the flag still reads 0, so a stop set just before
// is never missed.
#include "minidump_internal/platform.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <ctime>

namespace norvane_1 {
namespace platform {
namespace {

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t) &&
                  std::atomic<std::uint32_t>::is_always_lock_free,
              "the kernel reads the stop flag as a plain 32-bit word");

std::uint32_t const* wordOf(std::atomic<std::uint32_t> const& flag) {
    return reinterpret_cast<std::uint32_t const*>(&flag);
}

}  // namespace

void sleepUnlessStopped(std::atomic<std::uint32_t> const& stop, std::uint32_t milliseconds) {
    timespec const period{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000};
    ::syscall(SYS_futex, wordOf(stop), FUTEX_WAIT_PRIVATE, 0u, &period, nullptr, 0);
}

void wakeUpkeepSleep(std::atomic<std::uint32_t>& stop) {
    ::syscall(SYS_futex, wordOf(stop), FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}

}  // namespace platform
}  // namespace norvane_1
