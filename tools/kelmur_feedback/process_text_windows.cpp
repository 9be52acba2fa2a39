// Windows code only: the wide command line and environment, as UTF-8.
#include "process_text.h"

#include <windows.h>
#include <shellapi.h>

namespace kelmur_feedback {
namespace {

std::string toUtf8(wchar_t const* text) {
    int const size = ::WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) return std::string();
    std::string out(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, -1, &out[0], size, nullptr, nullptr);
    out.resize(static_cast<std::size_t>(size - 1));
    return out;
}

std::wstring toWide(char const* text) {
    int const size = ::MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0);
    if (size <= 1) return std::wstring();
    std::wstring out(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text, -1, &out[0], size);
    out.resize(static_cast<std::size_t>(size - 1));
    return out;
}

}  // namespace

std::vector<std::string> programArguments(int, char**) {
    int count = 0;
    wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    if (wide == nullptr) return arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(toUtf8(wide[i]));
    ::LocalFree(wide);
    return arguments;
}

std::string environmentValue(char const* name) {
    std::wstring const wideName = toWide(name);
    DWORD const size = ::GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
    if (size == 0) return std::string();
    std::wstring value(size, L'\0');
    DWORD const length = ::GetEnvironmentVariableW(wideName.c_str(), &value[0], size);
    value.resize(length);
    return toUtf8(value.c_str());
}

}  // namespace kelmur_feedback
