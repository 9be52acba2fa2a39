// The crash's own way of starting the task service. Portable code only.
#pragma once

namespace norvane_1 {
namespace internal {

// startExecuteMinidumpTaskthread without its wait for the first endpoint:
// the crashed thread starts the service and goes on with its steps while
// the service's thread makes its endpoint, which the handler process can't
// need before it has been started.
void startTaskServiceUnawaited();
// Waits, at most a second, until the service's first endpoint is made or
// couldn't be; at once without a service. Before the handler process starts.
void awaitTaskServiceEndpoint();

}  // namespace internal
}  // namespace norvane_1
