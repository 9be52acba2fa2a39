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

}  // namespace crash_host
