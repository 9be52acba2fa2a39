// The task service's two messages, as they cross the pipe. Portable code
// only. Both ends are this library, so the layout is the machine's own
// (little-endian on x86-64), pinned here byte by byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace norvane_1 {
namespace task {

constexpr std::size_t kDataCapacity = 2048;

// Client to server, always whole. The server reads only `code`; `data` and
// `size` serve the client's own log line.
struct Request {
    std::uint32_t code = 0;
    unsigned char data[kDataCapacity] = {};
    std::uint32_t reserved = 0;  // sent as 0, never read
    std::uint64_t size = 0;
};
static_assert(sizeof(Request) == 2064, "the request is 2064 bytes");
static_assert(offsetof(Request, code) == 0, "layout");
static_assert(offsetof(Request, data) == 4, "layout");
static_assert(offsetof(Request, reserved) == 2052, "layout");
static_assert(offsetof(Request, size) == 2056, "layout");

// Server to client: "PASS" or "FAIL" and four zero bytes. The client looks
// at the first four bytes alone.
struct Reply {
    char verdict[4] = {};
    std::uint32_t zero = 0;
};
static_assert(sizeof(Reply) == 8, "the reply is 8 bytes");

inline Reply replyOf(char const (&verdict)[5]) {
    Reply reply;
    std::memcpy(reply.verdict, verdict, sizeof reply.verdict);
    return reply;
}

constexpr char kPass[] = "PASS";
constexpr char kFail[] = "FAIL";

}  // namespace task
}  // namespace norvane_1
