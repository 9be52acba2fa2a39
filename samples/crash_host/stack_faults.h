// Crashes whose stacks test the collection of stacks: known call chains, a
// frame without unwind information, and stacks that are damaged.
#pragma once

namespace crash_host {

// crash_host_chain_1 -> _2 -> _3 -> accessViolation
[[noreturn]] void faultThroughCallChain();
// crash_host_chain_1 -> _2 -> _3 -> crash_chain_entry -> crash_chain_inner
// -> crash_chain_fault, the last three in the chain library
[[noreturn]] void faultInChainLibrary();
// crash_host_chain_1 -> _2 -> _3 -> crash_host_fault_without_unwind_info
[[noreturn]] void faultWithoutUnwindInfo();

// Hand this thread's registers to runExceptionHandler with the stack pointer
// moved onto 32 KB of garbage (random words, code addresses, stack
// addresses) and the frame pointer random; or moved to an address that is
// never mapped. They return only when the crash was passed on.
void crashOnGarbageStack();
void crashOnUnreadableStack();

}  // namespace crash_host
