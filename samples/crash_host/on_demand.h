// The host's calls that need no crash: an on-demand report of itself, and
// its end through the feedback tool.
#pragma once

namespace crash_host {

// collectReport of this process with the stack of each thread, into the log
// directory; prints "report: <path>". 0 when a path came back, else 1.
int reportOnDemand();

// terminateProduct(): the tool ends this process. Returns only when it
// didn't: prints the result, exit code 8.
int terminateThroughTool();

// For a report of this process made by another: install, start a thread that
// waits in a known function, print "crash_host: waiting at 0x<its entry>"
// and wait 60 s. Exit code 0.
int waitInKnownFunction();

}  // namespace crash_host
