// Readying the report codecs before a crash. Portable code only.
#pragma once

namespace norvane_1 {
namespace internal {

// Makes, once, what reading and writing a report otherwise make on first use:
// compiled expressions, key lists, the reader's locale (and Boost's caches
// behind them). Static objects made before crash handling is installed are
// destroyed after it is taken down at exit; one made first during a crash
// could be destroyed by a concurrent exit() while the worker still uses it.
// Doing it ahead also keeps the compilation off the crash path.
void prepareReportText();

}  // namespace internal
}  // namespace norvane_1
