#include "invocation_record.h"

#include <chrono>
#include <filesystem>
#include <fstream>

namespace kelmur_feedback {

std::int64_t microsecondsSinceEpoch() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

bool writeInvocationRecord(std::string const& file, std::vector<std::string> const& arguments, std::int64_t startedUs) {
    // Binary: a line ends with LF on every platform, so readers need not care.
    std::ofstream out(std::filesystem::u8path(file), std::ios::binary | std::ios::trunc);
    for (auto const& argument : arguments) out << argument << '\n';
    out << "started-us: " << startedUs << '\n';
    out.close();
    return !out.fail();
}

}  // namespace kelmur_feedback
