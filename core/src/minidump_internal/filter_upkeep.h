// Bringing crash handling up and down, and keeping the process hooks set.
// Portable code only.
#pragma once

namespace norvane_1 {

class ExceptionHandler;

// True when NORVANE_DISABLE_EXCEPTION_HANDLER is set: install and remove
// steps then do nothing at all.
bool exceptionHandlingDisabled();

// Install step: the singleton with its worker, g_exceptionHandler, the
// upkeep thread (which sets the hooks in its first pass and again every
// second), the assertion library.
void installCrashHandling(ExceptionHandler* handler);
// Remove step: assertion library, upkeep thread, hooks, singleton.
void removeCrashHandling();
// Stop step: ends the upkeep thread and waits for it; nothing else.
void stopFilterUpkeep();
// The library leaves the process: no more crash handling, nothing waited for.
void detachFromProcess();

}  // namespace norvane_1
