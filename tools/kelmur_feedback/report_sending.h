// Sending a report (the SendCommand): an HTTP(S) POST of the report file's
// bytes to the endpoint the product configures, with the title and the
// file's name in headers, percent-encoded UTF-8:
//
//   KELMUR_FEEDBACK_SEND_URL         where reports go (http:// or https://)
//   KELMUR_FEEDBACK_SEND_TIMEOUT_MS  the limit of one attempt (default 30000)
//   KELMUR_FEEDBACK_OUTBOX           where unsent reports stay (default:
//                                    "outbox" beside this program)
//
// A failed attempt (no answer, a time-out, a status outside 2xx) is tried
// once more. Nothing is lost: a report that could not be sent, or that had
// nowhere to go, is copied into the outbox, and the message says where.
#pragma once

#include "command_line.h"

namespace kelmur_feedback {

// The program's exit code: 0 only when the report was delivered.
int sendReport(SendCommand const& command);

}  // namespace kelmur_feedback
