// Module paths of 32-bit processes on 64-bit Windows. Such a process sees
// the system folder "System32" redirected to "SysWOW64", but asking for a
// module's path from outside gives the unredirected name, which names the
// 64-bit file of the same name.
#pragma once

#include <string>

namespace norvane_1 {

// Replaces the first path component that reads "SYSTEM32" in any case by
// "SysWOW64". False, with the path unchanged, when there is none.
bool replaceSystem32Component(std::wstring& path);

}  // namespace norvane_1
