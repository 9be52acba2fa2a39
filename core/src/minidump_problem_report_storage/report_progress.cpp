// Portable code only.
#include "report_progress.h"

namespace norvane_1 {
namespace internal {
namespace {

// Set during the library's static initialisation and only read afterwards.
ProgressSink g_sink{nullptr, nullptr};

}  // namespace

void setProgressSink(ProgressSink const& sink) { g_sink = sink; }

void recordProgress(char const* source, std::wstring const& text, wchar_t const* directory) {
    if (g_sink.record != nullptr) g_sink.record(source, text, directory);
}

void discardProgressRecords(std::wstring const& directory) {
    if (g_sink.discard != nullptr) g_sink.discard(directory);
}

}  // namespace internal
}  // namespace norvane_1
