#include "fault_stamp.h"

#include <chrono>
#include <cstdlib>
#include <fstream>

namespace crash_host {

void stampFault() {
    char const* file = std::getenv("CRASH_HOST_TIMESTAMP_FILE");
    if (file == nullptr || *file == '\0') return;
    using namespace std::chrono;
    auto const now = duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
    std::ofstream(file, std::ios::binary | std::ios::trunc) << "fault-us: " << now << '\n';
}

}  // namespace crash_host
