// One HTTP(S) POST, by the platform's kept library: libcurl on Linux,
// WinHTTP on Windows. http_post_posix.cpp and http_post_windows.cpp
// implement it.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace kelmur_feedback {

struct HttpRequest {
    std::string url;  // http:// or https://
    std::string body;
    std::string contentType;
    std::vector<std::pair<std::string, std::string>> headers;  // values ASCII
    std::chrono::milliseconds timeLimit{30000};                // connecting and the whole exchange
};

struct HttpResult {
    long status = 0;    // the answer's status; 0 when none came
    std::string error;  // why none came
};

HttpResult httpPost(HttpRequest const& request);

}  // namespace kelmur_feedback
