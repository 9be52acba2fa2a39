// POSIX code only.
#include "own_registers.h"

#include "minidump_posix/saved_registers.h"

#include <ucontext.h>

namespace norvane_test {

__attribute__((noinline)) void withOwnRegisters(
    std::function<void(norvane_1::Context const&, std::uint64_t)> const& use) {
    ucontext_t context;
    ::getcontext(&context);
    use(norvane_1::registersOf(context), reinterpret_cast<std::uint64_t>(__builtin_return_address(0)));
    __asm__ volatile("" ::: "memory");  // no tail call: this frame stays
}

}  // namespace norvane_test
