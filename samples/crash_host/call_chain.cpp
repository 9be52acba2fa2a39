#include "call_chain.h"

#include <cstdlib>

// No inlining and no tail calls: each function still has work after its call.
#define CRASH_HOST_CHAIN extern "C" __attribute__((noinline))

namespace {
volatile int g_depth = 0;
}

CRASH_HOST_CHAIN void crash_host_chain_3(void (*fault)()) {
    fault();
    g_depth = 3;
    std::abort();
}

CRASH_HOST_CHAIN void crash_host_chain_2(void (*fault)()) {
    crash_host_chain_3(fault);
    g_depth = 2;
}

CRASH_HOST_CHAIN void crash_host_chain_1(void (*fault)()) {
    crash_host_chain_2(fault);
    g_depth = 1;
}

// Written outside any function, so that the compiler describes nothing of it.
__asm__(
    ".text\n"
    ".globl crash_host_fault_without_unwind_info\n"
#if defined(__ELF__)
    ".type crash_host_fault_without_unwind_info, @function\n"
#endif
    "crash_host_fault_without_unwind_info:\n"
    "    push %rbx\n"
    "    sub $40, %rsp\n"
    "    xor %eax, %eax\n"
    "    movl $42, (%rax)\n"
    "    add $40, %rsp\n"
    "    pop %rbx\n"
    "    ret\n");
