#include "module_identity.h"

#include <cstdio>

namespace kelmur_feedback {
namespace {

std::string hexBytes(std::array<std::uint8_t, 16> const& bytes) {
    std::string text;
    for (std::uint8_t byte : bytes) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", static_cast<unsigned>(byte));
        text += pair;
    }
    return text;
}

std::string guidText(norvane_1::Guid const& guid) {
    char text[40];
    std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                  static_cast<unsigned>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

}  // namespace

// A GUID keeps its first three fields little-endian.
std::array<std::uint8_t, 16> identityBytes(norvane_1::Guid const& guid) {
    std::array<std::uint8_t, 16> bytes{};
    std::size_t next = 0;
    auto const add = [&bytes, &next](std::uint64_t value, int count) {
        for (int i = 0; i < count; ++i) bytes[next++] = static_cast<std::uint8_t>(value >> (8 * i));
    };
    add(guid.Data1, 4);
    add(guid.Data2, 2);
    add(guid.Data3, 2);
    for (std::uint8_t byte : guid.Data4) add(byte, 1);
    return bytes;
}

// The report's module list doesn't say which kind of file a module is; a
// path from the root is one of Linux.
std::string debugIdentity(norvane_1::ModuleInfo const& module) {
    std::string const bytes = hexBytes(identityBytes(module.Guid));
    if (bytes.find_first_not_of('0') == std::string::npos) return "no debug identity";
    if (!module.FullName.empty() && module.FullName.front() == L'/') return "build id " + bytes;
    return "guid " + guidText(module.Guid) + " age " + std::to_string(module.Age);
}

}  // namespace kelmur_feedback
