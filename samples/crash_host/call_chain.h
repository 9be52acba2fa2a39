// Known chains of calls that end in a fault, for checking the stack a report
// shows against the program's own symbols. Every function of a chain is
// kept out of line and calls the next one before it returns, so that each
// has a frame of its own in an optimised build.
#pragma once

extern "C" {

// crash_host_chain_1 -> crash_host_chain_2 -> crash_host_chain_3 -> fault()
[[noreturn]] void crash_host_chain_1(void (*fault)());
[[noreturn]] void crash_host_chain_2(void (*fault)());
[[noreturn]] void crash_host_chain_3(void (*fault)());

// A fault in hand-written code that has no unwind information: it saves a
// register and makes room on the stack, as compiled code would, so that its
// return address is not at the stack pointer.
void crash_host_fault_without_unwind_info();

// In the chain library, a shared library of the sample's own:
// crash_chain_entry -> crash_chain_inner -> crash_chain_fault (a null write).
void crash_chain_entry();
}
