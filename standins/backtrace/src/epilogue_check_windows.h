// A bound on the system unwinder's search for an epilogue. Windows code only.
//
// Before it unwinds a frame, RtlVirtualUnwind decides whether the code at
// the frame's address is an epilogue: it follows pops and the jumps that stay
// inside the function until it meets a return. Wine's follows them without a
// bound, so bytes that jump in a circle (they can, at an address that only
// looks like a return address) would keep it there forever. This follows
// the same path, with a bound, first.
#pragma once

#include <windows.h>

namespace bt {

// False when the bytes at `pc` would lead the epilogue search in a circle.
bool epilogueSearchEnds(unsigned char const* pc, DWORD64 imageBase, RUNTIME_FUNCTION const& function);

}  // namespace bt
