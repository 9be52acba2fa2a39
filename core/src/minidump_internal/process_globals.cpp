// Portable code only.
#include "process_globals.h"

namespace norvane_1 {

std::atomic<bool> g_processExiting{false};
std::atomic<ExceptionHandler*> g_exceptionHandler{nullptr};
std::atomic<std::uint32_t> g_workerThreadId{0};
std::atomic<std::uint32_t> g_serviceThreadId{0};
std::atomic<bool> g_installing{false};

}  // namespace norvane_1
