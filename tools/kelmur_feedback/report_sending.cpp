#include "report_sending.h"

#include "http_post.h"
#include "outbox.h"
#include "report_product.h"
#include "send_settings.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <thread>

namespace kelmur_feedback {
namespace {

constexpr int kAttempts = 2;  // one retry

namespace fs = std::filesystem;

std::optional<std::string> fileBytes(fs::path const& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Unreserved characters stay, every other byte becomes %XX.
std::string percentEncoded(std::string const& text) {
    std::string encoded;
    for (unsigned char c : text) {
        if (std::isalnum(c) || c == '-' || c == '.' || c == '_' || c == '~') {
            encoded += static_cast<char>(c);
        } else {
            char hex[4];
            std::snprintf(hex, sizeof hex, "%%%02X", c);
            encoded += hex;
        }
    }
    return encoded;
}

std::int64_t secondsSinceEpoch() {
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// "2026-11-23T18:31:26Z". std::gmtime's shared result is safe here: only
// the main thread asks for times.
std::string utcTime(std::int64_t secondsSinceEpoch) {
    std::time_t const time = static_cast<std::time_t>(secondsSinceEpoch);
    std::tm const* fields = std::gmtime(&time);
    char text[32] = "an unknown time";
    if (fields) std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", fields);
    return text;
}

// One attempt, bounded here as well: the HTTP library's own limits are not
// to be trusted everywhere (WinHTTP under Wine waits for a server that never
// answers for good). An attempt past its time is abandoned on its thread,
// which ends with the program.
HttpResult postWithin(HttpRequest const& request) {
    auto const answer = std::make_shared<std::promise<HttpResult>>();
    std::future<HttpResult> result = answer->get_future();
    std::thread attempt([answer, request] { answer->set_value(httpPost(request)); });
    if (result.wait_for(request.timeLimit + std::chrono::seconds(1)) != std::future_status::ready) {
        attempt.detach();
        return {0, "no answer within " + std::to_string(request.timeLimit.count()) + " ms"};
    }
    // Joined, so that the thread's own clean-up (the TLS library's, among
    // others) is done before the program ends.
    attempt.join();
    return result.get();
}

// Both attempts; the reason of the last failure when neither got through.
std::optional<std::string> deliver(SendSettings const& settings, std::string const& name, std::string const& bytes,
                                   std::string const& title) {
    HttpRequest request;
    request.url = settings.url;
    request.body = bytes;
    request.contentType = "text/plain; charset=utf-8";
    request.headers = {{"X-Report-Title", percentEncoded(title)}, {"X-Report-Name", percentEncoded(name)}};
    request.timeLimit = settings.timeLimit;
    std::string failure;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        HttpResult const result = postWithin(request);
        if (result.status >= 200 && result.status < 300) return std::nullopt;
        failure = result.status != 0 ? "the server answered " + std::to_string(result.status) : result.error;
    }
    return failure;
}

// Exit code 1 with the reason, and where the report is now (or that it
// stayed only where it was).
int keepInOutbox(Outbox& outbox, SendCommand const& command, std::string const& bytes, std::string const& reason) {
    std::string const name = fs::u8path(command.crashInfoFile).filename().u8string();
    std::string error;
    std::cerr << "kelmur-feedback: " << reason << "; ";
    if (outbox.keep(name, bytes, command.title, error)) {
        std::cerr << "kept in " << (outbox.folder() / fs::u8path(name)).u8string() << '\n';
    } else {
        std::cerr << "it could not be kept in " << outbox.folder().u8string() << " (" << error << ") and stays at "
                  << command.crashInfoFile << '\n';
    }
    return 1;
}

std::string tooLarge(std::size_t size, SendSettings const& settings) {
    return "the report is " + std::to_string(size) + " bytes, more than the " + std::to_string(settings.maxBytes) +
           " of KELMUR_FEEDBACK_SEND_MAX_BYTES";
}

// Why a report of `product` may not go now; nothing when it may.
std::optional<std::string> heldBack(Outbox const& outbox, std::string const& product, SendSettings const& settings,
                                    std::int64_t now) {
    std::optional<std::int64_t> const last = outbox.lastUpload(product);
    std::int64_t const interval = settings.interval.count();
    // A last upload in the future: the clock was set back; it holds nothing.
    if (interval == 0 || !last || *last > now || now - *last >= interval) return std::nullopt;
    std::int64_t const next = *last + interval;
    return "a report of " + (product.empty() ? std::string("the unnamed product") : "'" + product + "'") +
           " went out " + std::to_string(now - *last) +
           " s ago, and KELMUR_FEEDBACK_SEND_INTERVAL_S allows one upload per product every " +
           std::to_string(interval) + " s; the next may go from " + utcTime(next) + " (in " +
           std::to_string(next - now) + " s)";
}

// After an upload of `product`: what waits for it in the outbox, oldest
// first, until an attempt fails (the server is in trouble; the rest waits).
void sendWaiting(Outbox& outbox, std::string const& product, SendSettings const& settings) {
    for (auto const& waiting : outbox.waiting()) {
        std::optional<std::string> const bytes = fileBytes(waiting.file);
        if (!bytes || bytes->size() > settings.maxBytes || productOf(*bytes) != product) continue;
        std::string const name = waiting.file.filename().u8string();
        if (std::optional<std::string> const failure = deliver(settings, name, *bytes, waiting.title)) {
            std::cerr << "kelmur-feedback: " << name << " waits on in the outbox: " << *failure << '\n';
            return;
        }
        outbox.remove(name);
        std::cerr << "kelmur-feedback: " << name << " from the outbox sent as well\n";
    }
}

}  // namespace

int sendReport(SendCommand const& command) {
    std::optional<std::string> const report = fileBytes(fs::u8path(command.crashInfoFile));
    if (!report) {
        std::cerr << "kelmur-feedback: no report could be read at " << command.crashInfoFile << '\n';
        return 1;
    }
    SendSettings const settings = readSendSettings();
    Outbox outbox(settings.outbox);
    if (settings.url.empty()) return keepInOutbox(outbox, command, *report, "no KELMUR_FEEDBACK_SEND_URL to send to");
    if (report->size() > settings.maxBytes) {
        return keepInOutbox(outbox, command, *report, tooLarge(report->size(), settings));
    }
    std::string const product = productOf(*report);
    if (auto const reason = heldBack(outbox, product, settings, secondsSinceEpoch())) {
        return keepInOutbox(outbox, command, *report, *reason);
    }

    std::string const name = fs::u8path(command.crashInfoFile).filename().u8string();
    if (std::optional<std::string> const failure = deliver(settings, name, *report, command.title)) {
        return keepInOutbox(outbox, command, *report,
                            "the report could not be sent to " + settings.url + " (" + *failure + ", twice)");
    }
    outbox.noteUpload(product, secondsSinceEpoch());
    outbox.remove(name);  // a copy kept by an earlier try
    sendWaiting(outbox, product, settings);
    return 0;
}

}  // namespace kelmur_feedback
