// POSIX code only.
#include "libunwind_binding_posix.h"

#include <dlfcn.h>

namespace bt {
namespace {

// libunwind's names are macros for its x86-64 ones ("_Ux86_64_step").
#define BT_SYMBOL_NAME(name) BT_TEXT(name)
#define BT_TEXT(name) #name

template <typename Function>
bool bind(void* library, char const* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    return function != nullptr;
}

// Local binding: libunwind's local library, which the generic one brings
// along, exports the _Unwind_* functions of C++ exceptions, and must not
// stand in for the compiler's own ones in the whole process.
Libunwind const* load() {
    static Libunwind bound;
    void* const library = ::dlopen(NORVANE_LIBUNWIND_SONAME, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return nullptr;
    bound.localAddressSpace = static_cast<unw_addr_space_t*>(::dlsym(library, BT_SYMBOL_NAME(unw_local_addr_space)));
    bool const whole = bound.localAddressSpace != nullptr &&
                       bind(library, BT_SYMBOL_NAME(unw_get_accessors), bound.getAccessors) &&
                       bind(library, BT_SYMBOL_NAME(unw_create_addr_space), bound.createAddressSpace) &&
                       bind(library, BT_SYMBOL_NAME(unw_destroy_addr_space), bound.destroyAddressSpace) &&
                       bind(library, BT_SYMBOL_NAME(unw_set_caching_policy), bound.setCachingPolicy) &&
                       bind(library, BT_SYMBOL_NAME(unw_init_remote), bound.initRemote) &&
                       bind(library, BT_SYMBOL_NAME(unw_step), bound.step) &&
                       bind(library, BT_SYMBOL_NAME(unw_get_reg), bound.getRegister) &&
                       bind(library, BT_SYMBOL_NAME(unw_get_proc_info), bound.getProcedureInfo);
    return whole ? &bound : nullptr;
}

}  // namespace

Libunwind const* libunwind() {
    static Libunwind const* const bound = load();
    return bound;
}

}  // namespace bt
