// libunwind, bound at run time. POSIX code only.
//
// The crash library would otherwise load libunwind, and the compression
// library it brings along for compressed debug information, with itself:
// some 120 KiB more memory in every program that loads it, crash or not.
// The walk needs them only once a crash comes, and the worker prepares the
// walk when it starts, so they are loaded then, once, and kept.
#pragma once

#include <libunwind.h>

namespace bt {

// The functions of libunwind's generic library the walk calls.
struct Libunwind {
    unw_addr_space_t* localAddressSpace;
    decltype(&unw_get_accessors) getAccessors;
    decltype(&unw_create_addr_space) createAddressSpace;
    decltype(&unw_destroy_addr_space) destroyAddressSpace;
    decltype(&unw_set_caching_policy) setCachingPolicy;
    decltype(&unw_init_remote) initRemote;
    decltype(&unw_step) step;
    decltype(&unw_get_reg) getRegister;
    decltype(&unw_get_proc_info) getProcedureInfo;
};

// The bound library; null when it can't be loaded or lacks a function.
// The first call loads it (the dynamic loader's lock); any thread.
Libunwind const* libunwind();

}  // namespace bt
