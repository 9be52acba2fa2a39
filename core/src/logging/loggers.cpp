// The loggers of the four source groups, made at install. Portable code only.
#include "logging.h"

#include <norvane_log/component_logger.h>

#include <vantix_2_18/utf.h>

namespace norvane_1 {
namespace log {
namespace {

log4cplus::Logger makeComponentLogger(log4cplus::tstring const& name) {
    configureComponentLogger(name);
    return log4cplus::Logger::getInstance(name);
}

}  // namespace

void prepareLoggers() {
    mainLogger();
    internalLogger();
    platformLogger();
    prsLogger();
}

log4cplus::Logger& mainLogger() {
    static log4cplus::Logger logger = makeComponentLogger(LOG4CPLUS_TEXT("norvaneminidump.main"));
    return logger;
}

log4cplus::Logger& internalLogger() {
    static log4cplus::Logger logger = makeComponentLogger(LOG4CPLUS_TEXT("norvaneminidump.internal"));
    return logger;
}

log4cplus::Logger& platformLogger() {
    static log4cplus::Logger logger = makeComponentLogger(LOG4CPLUS_TEXT("norvaneminidump.windows"));
    return logger;
}

log4cplus::Logger& prsLogger() {
    static log4cplus::Logger logger = makeComponentLogger(LOG4CPLUS_TEXT("norvaneminidump.prs"));
    return logger;
}

namespace {

template <typename Char>
std::basic_string<Char> inLogCharacters(std::wstring const& text);

template <>
[[maybe_unused]] std::wstring inLogCharacters<wchar_t>(std::wstring const& text) {
    return text;
}

template <>
[[maybe_unused]] std::string inLogCharacters<char>(std::wstring const& text) {
    return VANTIX_2_18::utf::to_utf8(text);
}

}  // namespace

log4cplus::tstring toLogText(std::wstring const& text) { return inLogCharacters<log4cplus::tchar>(text); }

}  // namespace log
}  // namespace norvane_1
