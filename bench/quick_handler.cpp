// A crash handler that exits at once: crash_bench times the library's own
// share of a crash with it. It notes when it started and when it ends in
// the file KELMUR_FEEDBACK_RECORD names, as system-clock microseconds, so
// that the start of a process (slow under Wine) can be told apart.
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

long long nowMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

int main() {
    long long const started = nowMicroseconds();
    char const* const record = std::getenv("KELMUR_FEEDBACK_RECORD");
    std::FILE* const file = record != nullptr ? std::fopen(record, "w") : nullptr;
    if (file == nullptr) return 0;
    std::fprintf(file, "started-us: %lld\nended-us: %lld\n", started, nowMicroseconds());
    std::fclose(file);
    return 0;
}
