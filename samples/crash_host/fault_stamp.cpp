#include "fault_stamp.h"

#include <chrono>
#include <cstdlib>
#include <fstream>

namespace crash_host {

void stampFault() {
    char const* file = std::getenv("CRASH_HOST_TIMESTAMP_FILE");
    if (file == nullptr || *file == '\0') return;
    // The file is open before the clock is read: its opening is no part of
    // the crash that follows.
    std::ofstream stamp(file, std::ios::binary | std::ios::trunc);
    using namespace std::chrono;
    stamp << "fault-us: " << duration_cast<microseconds>(system_clock::now().time_since_epoch()).count() << '\n';
}

}  // namespace crash_host
