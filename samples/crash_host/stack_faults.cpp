#include "stack_faults.h"

#include "call_chain.h"
#include "faults.h"
#include "host_platform.h"

#include <cstdint>
#include <random>

namespace crash_host {
namespace {

constexpr std::uint64_t kNeverMapped = 0x1000;  // the second page of the address space
constexpr std::size_t kGarbageWords = 4096;

}  // namespace

void faultThroughCallChain() { crash_host_chain_1(accessViolation); }
void faultInChainLibrary() { crash_host_chain_1(crash_chain_entry); }
void faultWithoutUnwindInfo() { crash_host_chain_1(crash_host_fault_without_unwind_info); }

__attribute__((noinline)) void crashOnGarbageStack() {
    std::uint64_t garbage[kGarbageWords];
    std::mt19937_64 random(std::random_device{}());
    auto const code = reinterpret_cast<std::uint64_t>(&crash_host_chain_1);
    auto const stack = reinterpret_cast<std::uint64_t>(&garbage[0]);
    for (std::uint64_t& word : garbage) {
        switch (random() % 4) {
            case 0: word = random(); break;
            case 1: word = code + random() % 4096; break;
            case 2: word = stack + random() % sizeof garbage; break;
            default: word = random() % 256; break;
        }
    }
    runOwnExceptionHandlerOn(stack + 8 * (random() % 64), random());
}

void crashOnUnreadableStack() { runOwnExceptionHandlerOn(kNeverMapped, 0); }

}  // namespace crash_host
