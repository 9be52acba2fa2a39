// The product's logging set-up, as far as the crash library needs it.
#pragma once

#include <log4cplus/tstring.h>

namespace norvane_1 {
namespace log {

// Prepares the named log4cplus logger for use by a component. Output stays
// quiet unless the host configures log4cplus (appenders on the root logger or
// on the component's logger), or NORVANE_LOG_CONFIG names a log4cplus
// properties file, which is then read once for the whole process.
void configureComponentLogger(log4cplus::tstring const& name);

}  // namespace log
}  // namespace norvane_1
