// Process-wide flags and pointers of crash handling. Portable code only.
#pragma once

#include <atomic>
#include <cstdint>

namespace norvane_1 {

class ExceptionHandler;

// Set when the library is unloaded from the process (process exit): the
// filter then passes every exception on, and release() waits for nothing.
extern std::atomic<bool> g_processExiting;
// The handler in force, written by the install step and the upkeep thread,
// read by the worker. Nothing clears it.
extern std::atomic<ExceptionHandler*> g_exceptionHandler;
// The system's id of the worker thread, once it runs; 0 before.
extern std::atomic<std::uint32_t> g_workerThreadId;
// The system's id of the task service's thread while it runs; 0 before.
extern std::atomic<std::uint32_t> g_serviceThreadId;
// Set while the install step runs.
extern std::atomic<bool> g_installing;

}  // namespace norvane_1
