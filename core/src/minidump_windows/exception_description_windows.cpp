// Windows code only.
#include "windows_handler_state.h"

#include "minidump_internal/exception_names.h"

namespace norvane_1 {

Exception describeException(EXCEPTION_POINTERS const& pointers) {
    Exception exception;
    auto const code = pointers.ExceptionRecord ? static_cast<std::uint32_t>(pointers.ExceptionRecord->ExceptionCode)
                                               : 0u;
    exception.code = code;
    exception.description = exceptionDescription(code);
    exception.address = pointers.ContextRecord ? pointers.ContextRecord->Rip : 0;
    return exception;
}

}  // namespace norvane_1
