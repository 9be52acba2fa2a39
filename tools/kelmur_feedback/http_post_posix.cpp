// One POST through libcurl. POSIX code only.
#include "http_post.h"

#include <curl/curl.h>

#include <memory>

namespace kelmur_feedback {
namespace {

// The answer's body is not wanted.
std::size_t discard(char*, std::size_t size, std::size_t count, void*) { return size * count; }

struct CurlDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct HeaderListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

}  // namespace

HttpResult httpPost(HttpRequest const& request) {
    static CURLcode const initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    HttpResult result;
    std::unique_ptr<CURL, CurlDeleter> const curl(initialised == CURLE_OK ? curl_easy_init() : nullptr);
    if (!curl) {
        result.error = "the HTTP library could not be set up";
        return result;
    }
    curl_slist* headers = curl_slist_append(nullptr, ("Content-Type: " + request.contentType).c_str());
    for (auto const& header : request.headers) {
        headers = curl_slist_append(headers, (header.first + ": " + header.second).c_str());
    }
    std::unique_ptr<curl_slist, HeaderListDeleter> const headerList(headers);
    long const milliseconds = static_cast<long>(request.timeLimit.count());
    curl_easy_setopt(curl.get(), CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_POST, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, request.body.data());
    curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headerList.get());
    curl_easy_setopt(curl.get(), CURLOPT_CONNECTTIMEOUT_MS, milliseconds);
    curl_easy_setopt(curl.get(), CURLOPT_TIMEOUT_MS, milliseconds);
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, discard);
    CURLcode const code = curl_easy_perform(curl.get());
    if (code != CURLE_OK) {
        result.error = curl_easy_strerror(code);
        return result;
    }
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &result.status);
    return result;
}

}  // namespace kelmur_feedback
