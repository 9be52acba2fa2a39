#include "norvane_log/component_logger.h"

#include <log4cplus/configurator.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <cstdlib>
#include <mutex>

namespace norvane_1 {
namespace log {
namespace {

void readConfigurationOnce() {
    static std::once_flag once;
    std::call_once(once, [] {
        char const* path = std::getenv("NORVANE_LOG_CONFIG");
        if (path == nullptr || *path == '\0') return;
        log4cplus::PropertyConfigurator::doConfigure(LOG4CPLUS_STRING_TO_TSTRING(path));
    });
}

}  // namespace

void configureComponentLogger(log4cplus::tstring const& name) {
    log4cplus::initialize();
    readConfigurationOnce();
    log4cplus::Logger logger = log4cplus::Logger::getInstance(name);
    // A null appender keeps log4cplus from complaining about a logger without
    // appenders; additivity still passes every event on to the host's root.
    if (logger.getAllAppenders().empty()) {
        logger.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender()));
    }
}

}  // namespace log
}  // namespace norvane_1
