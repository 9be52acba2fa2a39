#include "send_settings.h"

#include "process_text.h"

#include <norvane_1/os_layer.h>

#include <algorithm>
#include <iostream>
#include <optional>

namespace kelmur_feedback {
namespace {

// Decimal digits only, from `lowest` up; nothing for anything else.
std::optional<std::uint64_t> decimal(std::string const& text, std::uint64_t lowest) {
    if (text.empty() || text.size() > 19) return std::nullopt;
    std::uint64_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
    if (value < lowest) return std::nullopt;
    return value;
}

// The variable's number, or `fallback` when it is unset or not a number.
std::uint64_t setting(char const* name, std::uint64_t lowest, std::uint64_t fallback, char const* unit) {
    std::string const text = environmentValue(name);
    if (text.empty()) return fallback;
    if (std::optional<std::uint64_t> const value = decimal(text, lowest)) return *value;
    std::cerr << "kelmur-feedback: " << name << " is '" << text << "', not a whole number of " << unit
              << (lowest > 0 ? " above 0" : "") << "; using " << fallback << '\n';
    return fallback;
}

std::filesystem::path outbox() {
    std::string const chosen = environmentValue("KELMUR_FEEDBACK_OUTBOX");
    if (!chosen.empty()) return std::filesystem::u8path(chosen);
    return std::filesystem::path(norvane_1::os_layer::getExecutableDirectory()) / "outbox";
}

// Bounds that keep the arithmetic on times and sizes far from overflow.
constexpr std::uint64_t kLongestTimeLimitMs = 24ull * 3600 * 1000;
constexpr std::uint64_t kLongestIntervalS = 366ull * 24 * 3600;

}  // namespace

SendSettings readSendSettings() {
    SendSettings settings;
    settings.url = environmentValue("KELMUR_FEEDBACK_SEND_URL");
    auto const timeLimitMs = setting("KELMUR_FEEDBACK_SEND_TIMEOUT_MS", 1,
                                     static_cast<std::uint64_t>(settings.timeLimit.count()), "milliseconds");
    settings.timeLimit = std::chrono::milliseconds(std::min(timeLimitMs, kLongestTimeLimitMs));
    auto const intervalS = setting("KELMUR_FEEDBACK_SEND_INTERVAL_S", 0,
                                   static_cast<std::uint64_t>(settings.interval.count()), "seconds");
    settings.interval = std::chrono::seconds(std::min(intervalS, kLongestIntervalS));
    settings.maxBytes = setting("KELMUR_FEEDBACK_SEND_MAX_BYTES", 1, settings.maxBytes, "bytes");
    settings.outbox = outbox();
    return settings;
}

}  // namespace kelmur_feedback
