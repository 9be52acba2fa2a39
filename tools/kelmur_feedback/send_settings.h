// What the product configures for sending, from the tool's environment:
//
//   KELMUR_FEEDBACK_SEND_URL          where reports go (http:// or https://)
//   KELMUR_FEEDBACK_SEND_TIMEOUT_MS   the limit of one attempt (default 30000)
//   KELMUR_FEEDBACK_SEND_INTERVAL_S   at most one upload per product in so many
//                                     seconds (default 0: no limit)
//   KELMUR_FEEDBACK_SEND_MAX_BYTES    the largest report sent (default 16 MiB)
//   KELMUR_FEEDBACK_OUTBOX            where unsent reports stay (default:
//                                     "outbox" beside this program)
//
// No interval by default: a report held back waits for the next upload of
// its product, and of a product that seldom fails that may be long in
// coming. A product that can fail often (a freeze guard that fires again
// and again) sets one. The size cap keeps one huge report (a log gone wild)
// from tying up the endpoint; a report is seldom more than a MiB or two.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace kelmur_feedback {

struct SendSettings {
    std::string url;  // empty: nowhere to send to
    std::chrono::milliseconds timeLimit{30000};
    std::chrono::seconds interval{0};  // 0: no limit
    std::uint64_t maxBytes = 16 * 1024 * 1024;
    std::filesystem::path outbox;
};

// A value that is not a number in range is said on stderr, and its default
// stands.
SendSettings readSendSettings();

}  // namespace kelmur_feedback
