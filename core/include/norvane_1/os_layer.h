// Small platform wrappers of the library, for the programs that load it.
#pragma once

#include <norvane_1/export.h>

#include <string>

namespace norvane_1 {
namespace os_layer {

// Local time as "%Y-%m-%d-%H-%M-%S", "-" and the milliseconds without
// leading zeros ("2016-03-01-10-22-31-5"); "time_stamp" if the time can't be
// read or formatted.
NORVANE_API std::wstring getTimeStamp();

}  // namespace os_layer
}  // namespace norvane_1
