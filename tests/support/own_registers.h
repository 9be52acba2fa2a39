// A test's own thread's registers, for walking the test's own stack.
#pragma once

#include <norvane_1/report_records.h>

#include <cstdint>
#include <functional>

namespace norvane_test {

// Captures the registers of its own frame and calls `use` with them while
// that frame is still live, so that its stack stays as the registers saw
// it; `returnAddress` is where that frame returns to, the first caller that
// a walk from the registers must find.
void withOwnRegisters(std::function<void(norvane_1::Context const& registers, std::uint64_t returnAddress)> const& use);

}  // namespace norvane_test
