// Sending a report (the SendCommand): an HTTP(S) POST of the report file's
// bytes to the endpoint the product configures (send_settings.h), with the
// title and the file's name in headers, percent-encoded UTF-8.
//
// A failed attempt (no answer, a time-out, a status outside 2xx) is tried
// once more. Nothing is lost: a report that could not be sent, had nowhere
// to go, is larger than the size cap, or comes within the interval after
// the last upload of its product, is copied into the outbox (outbox.h), and
// the message says why and where. The next upload of that product that goes
// through also sends what waits in the outbox for it, oldest first, until
// one fails; each delivered report leaves the outbox.
#pragma once

#include "command_line.h"

namespace kelmur_feedback {

// The program's exit code: 0 only when the report was delivered.
int sendReport(SendCommand const& command);

}  // namespace kelmur_feedback
