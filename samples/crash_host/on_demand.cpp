#include "on_demand.h"

#include <norvane_1/norvane.h>

#include <vantix_2_18/utf.h>

#include <chrono>
#include <cstdint>
#include <iostream>
#include <thread>

namespace crash_host {

constexpr int kNotEndedExitCode = 8;

int reportOnDemand() {
    std::wstring const path = norvane_1::collectReport(true, 0, nullptr, false);
    std::cout << "crash_host: report: " << VANTIX_2_18::utf::to_utf8(path) << std::endl;
    return path.empty() ? 1 : 0;
}

// The function a report's stacks must show this thread in.
[[gnu::noinline]] void knownWait() {
    std::this_thread::sleep_for(std::chrono::seconds(60));
    asm volatile("");  // keeps the sleep a call, not a tail jump
}

int waitInKnownFunction() {
    std::thread waiting(knownWait);
    std::cout << "crash_host: waiting at 0x" << std::hex << reinterpret_cast<std::uintptr_t>(&knownWait) << std::dec
              << std::endl;
    waiting.join();
    return 0;
}

int terminateThroughTool() {
    bool const ended = norvane_1::terminateProduct();
    std::cout << "crash_host: terminateProduct returned " << (ended ? "true" : "false") << std::endl;
    return kNotEndedExitCode;
}

}  // namespace crash_host
