#include "report_sending.h"

#include "http_post.h"
#include "process_text.h"

#include <norvane_1/os_layer.h>

#include <vantix_2_18/utf.h>

#include <cstdio>
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
constexpr long kDefaultTimeLimitMs = 30000;

namespace fs = std::filesystem;

std::optional<std::string> fileBytes(std::string const& path) {
    std::ifstream in(fs::u8path(path), std::ios::binary);
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

std::chrono::milliseconds timeLimit() {
    std::string const text = environmentValue("KELMUR_FEEDBACK_SEND_TIMEOUT_MS");
    char* end = nullptr;
    long const value = text.empty() ? 0 : std::strtol(text.c_str(), &end, 10);
    return std::chrono::milliseconds(value > 0 && *end == '\0' ? value : kDefaultTimeLimitMs);
}

fs::path outbox() {
    std::string const chosen = environmentValue("KELMUR_FEEDBACK_OUTBOX");
    if (!chosen.empty()) return fs::u8path(chosen);
    return fs::path(norvane_1::os_layer::getExecutableDirectory()) / "outbox";
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

// Writes the report's bytes, as read, into the outbox; exit code 1 with the
// reason, and where the report is now (or that it stayed only where it was).
// Written rather than copied: the mingw-w64 C++ library's copy_file ignores
// overwrite_existing, and a report sent again after an earlier failure must
// replace the copy kept then.
int keepInOutbox(std::string const& path, std::string const& bytes, std::string const& reason) {
    fs::path const folder = outbox();
    fs::path const kept = folder / fs::u8path(path).filename();
    std::error_code error;
    fs::create_directories(folder, error);
    std::ofstream out(kept, std::ios::binary | std::ios::trunc);
    bool const written = out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())) && out.flush();
    std::cerr << "kelmur-feedback: " << reason << "; ";
    if (!written) {
        std::cerr << "it could not be kept in " << folder.u8string()
                  << (error ? " (" + error.message() + ")" : std::string()) << " and stays at " << path << '\n';
    } else {
        std::cerr << "kept in " << kept.u8string() << '\n';
    }
    return 1;
}

}  // namespace

int sendReport(SendCommand const& command) {
    std::optional<std::string> const report = fileBytes(command.crashInfoFile);
    if (!report) {
        std::cerr << "kelmur-feedback: no report could be read at " << command.crashInfoFile << '\n';
        return 1;
    }
    HttpRequest request;
    request.url = environmentValue("KELMUR_FEEDBACK_SEND_URL");
    if (request.url.empty()) {
        return keepInOutbox(command.crashInfoFile, *report, "no KELMUR_FEEDBACK_SEND_URL to send to");
    }
    request.body = *report;
    request.contentType = "text/plain; charset=utf-8";
    request.headers = {{"X-Report-Title", percentEncoded(command.title)},
                       {"X-Report-Name", percentEncoded(fs::u8path(command.crashInfoFile).filename().u8string())}};
    request.timeLimit = timeLimit();

    std::string failure;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        HttpResult const result = postWithin(request);
        if (result.status >= 200 && result.status < 300) return 0;
        failure = result.status != 0 ? "the server answered " + std::to_string(result.status) : result.error;
    }
    return keepInOutbox(command.crashInfoFile, *report,
                        "the report could not be sent to " + request.url + " (" + failure + ", twice)");
}

}  // namespace kelmur_feedback
