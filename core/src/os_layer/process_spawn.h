// Starting a program and waiting for its end: the crash path's start of the
// handler process, and runProcess on Linux.
#pragma once

#include <string>
#include <vector>

namespace norvane_1 {
namespace os_layer {

// Starts `program` with `arguments` and waits for its end without a time
// limit; the program receives each argument as one, blanks included.
// `started`, when given, runs once the program runs. The exit code, or -1 if
// the program could not be started.
int spawnAndWait(std::wstring const& program, std::vector<std::wstring> const& arguments, void (*started)() = nullptr);

}  // namespace os_layer
}  // namespace norvane_1
