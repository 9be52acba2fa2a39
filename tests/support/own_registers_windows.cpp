// Windows code only.
#include "own_registers.h"

#include "minidump_windows/saved_registers.h"

#include <windows.h>

namespace norvane_test {

__attribute__((noinline)) void withOwnRegisters(
    std::function<void(norvane_1::Context const&, std::uint64_t)> const& use) {
    CONTEXT context;
    ::RtlCaptureContext(&context);
    use(norvane_1::registersOf(context), reinterpret_cast<std::uint64_t>(__builtin_return_address(0)));
    __asm__ volatile("" ::: "memory");  // no tail call: this frame stays
}

}  // namespace norvane_test
