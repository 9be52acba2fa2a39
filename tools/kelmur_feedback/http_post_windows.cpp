// One POST through WinHTTP. Windows code only.
#include "http_post.h"

#include <windows.h>
#include <winhttp.h>

#include <vantix_2_18/utf.h>

namespace kelmur_feedback {
namespace {

class InternetHandle {
public:
    explicit InternetHandle(HINTERNET handle) : m_handle(handle) {}
    ~InternetHandle() {
        if (m_handle != nullptr) ::WinHttpCloseHandle(m_handle);
    }
    InternetHandle(InternetHandle const&) = delete;
    InternetHandle& operator=(InternetHandle const&) = delete;
    HINTERNET get() const { return m_handle; }

private:
    HINTERNET m_handle;
};

std::string failure(char const* step) {
    return std::string(step) + " failed (error " + std::to_string(::GetLastError()) + ")";
}

}  // namespace

HttpResult httpPost(HttpRequest const& request) {
    HttpResult result;
    std::wstring const url = VANTIX_2_18::utf::from_utf8(request.url);
    URL_COMPONENTS parts{};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = DWORD(-1);
    if (!::WinHttpCrackUrl(url.c_str(), 0, 0, &parts)) {
        result.error = "not a URL: " + request.url;
        return result;
    }
    std::wstring const host(parts.lpszHostName, parts.dwHostNameLength);
    std::wstring const path = std::wstring(parts.lpszUrlPath, parts.dwUrlPathLength) +
                              std::wstring(parts.lpszExtraInfo, parts.dwExtraInfoLength);

    InternetHandle const session(::WinHttpOpen(L"kelmur-feedback", WINHTTP_ACCESS_TYPE_DEFAULT_PROXY,
                                               WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, 0));
    if (session.get() == nullptr) return {0, failure("WinHttpOpen")};
    int const limit = static_cast<int>(request.timeLimit.count());
    ::WinHttpSetTimeouts(session.get(), limit, limit, limit, limit);
    InternetHandle const connection(::WinHttpConnect(session.get(), host.c_str(), parts.nPort, 0));
    if (connection.get() == nullptr) return {0, failure("WinHttpConnect")};
    DWORD const secure = parts.nScheme == INTERNET_SCHEME_HTTPS ? WINHTTP_FLAG_SECURE : 0;
    InternetHandle const exchange(::WinHttpOpenRequest(connection.get(), L"POST", path.c_str(), nullptr,
                                                       WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, secure));
    if (exchange.get() == nullptr) return {0, failure("WinHttpOpenRequest")};

    std::string headers = "Content-Type: " + request.contentType + "\r\n";
    for (auto const& header : request.headers) headers += header.first + ": " + header.second + "\r\n";
    std::wstring const wideHeaders = VANTIX_2_18::utf::from_utf8(headers);
    if (!::WinHttpSendRequest(exchange.get(), wideHeaders.c_str(), DWORD(-1L), const_cast<char*>(request.body.data()),
                              static_cast<DWORD>(request.body.size()), static_cast<DWORD>(request.body.size()), 0) ||
        !::WinHttpReceiveResponse(exchange.get(), nullptr)) {
        return {0, failure("sending the report")};
    }
    DWORD status = 0;
    DWORD size = sizeof status;
    if (!::WinHttpQueryHeaders(exchange.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                               WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX)) {
        return {0, failure("reading the answer's status")};
    }
    result.status = static_cast<long>(status);
    return result;
}

}  // namespace kelmur_feedback
