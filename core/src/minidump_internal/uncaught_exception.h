// The C++ exception that nothing caught. The run-time library ends the
// process through std::terminate and abort(), which by themselves tell a
// crash report only "ABORT_CALL": the exception's type and what() are lost
// unless a terminate handler notes them on the way. Portable code only.
#pragma once

#include <string>

namespace norvane_1 {
namespace internal {

// Puts our terminate handler in place, keeping the one the host had. Ours
// notes the exception (type, demangled, and what() of a std::exception),
// then hands over to the host's handler, or aborts if there was none; the
// abort is what the crash hooks take.
void installTerminateHandler();
// Puts the host's handler back, if ours is still the one in place.
void restoreTerminateHandler();

// What the terminate handler noted, once; false when it noted nothing.
bool takeUncaughtException(std::wstring& type, std::wstring& what);

}  // namespace internal
}  // namespace norvane_1
