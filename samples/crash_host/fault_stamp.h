// The moment of a fault, for the crash bench: with CRASH_HOST_TIMESTAMP_FILE
// set, "fault-us: <microseconds since the Unix epoch>" is written there just
// before the host faults.
#pragma once

namespace crash_host {

void stampFault();

}  // namespace crash_host
