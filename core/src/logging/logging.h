// Log lines of the library. Portable code only.
//
// Each source group logs to its own logger; the loggers are made once, at
// install (prepareLoggers), or at their first use by a program that never
// installs. Logging decides nothing: a line is built only when
// its level is enabled, and no result of logging is ever looked at.
//
//   NORVANE_LOG_INFO(log::prsLogger(), L"Input module map size: " << count);
//   NORVANE_LOG_ERROR(log::prsLogger(), L"Empty stack maps, exit");
//     -> "Empty stack maps, exit, at file: <source path>:<line>"
#pragma once

#include <log4cplus/logger.h>

#include <sstream>
#include <string>

namespace norvane_1 {
namespace log {

log4cplus::Logger& mainLogger();      // "norvaneminidump.main"
log4cplus::Logger& internalLogger();  // "norvaneminidump.internal"
log4cplus::Logger& platformLogger();  // "norvaneminidump.windows"
log4cplus::Logger& prsLogger();       // "norvaneminidump.prs"

// Makes all four loggers, and with them log4cplus's own state. Not done at
// load, where it would cost every program that loads the library and never
// installs well over a megabyte of memory (the logging library and the C++
// streams and locales it sets up); done at install, so that a crash never
// makes them on the crashed thread.
void prepareLoggers();

// The logger's own character type: wide text is passed through where log4cplus
// is built for Unicode and converted to UTF-8 where it is not.
log4cplus::tstring toLogText(std::wstring const& text);

}  // namespace log
}  // namespace norvane_1

#define NORVANE_LOG_AT(logger, level, expression)                                                                 \
    do {                                                                                                          \
        log4cplus::Logger& norvaneLogger_ = (logger);                                                             \
        if (norvaneLogger_.isEnabledFor(level)) {                                                                 \
            std::wostringstream norvaneLine_;                                                                     \
            norvaneLine_ << expression;                                                                           \
            norvaneLogger_.forcedLog(level, ::norvane_1::log::toLogText(norvaneLine_.str()), __FILE__, __LINE__); \
        }                                                                                                         \
    } while (false)

#define NORVANE_LOG_INFO(logger, expression) NORVANE_LOG_AT(logger, log4cplus::INFO_LOG_LEVEL, expression)

// Failures carry their source position in the text itself.
#define NORVANE_LOG_ERROR(logger, expression) \
    NORVANE_LOG_AT(logger, log4cplus::ERROR_LOG_LEVEL, expression << L", at file: " << __FILE__ << L":" << __LINE__)
