// One walk of a stack: unwind information first, the scanned return
// addresses where it runs out. Portable code only.
#pragma once

#include "frame_unwinder.h"
#include "module_ranges.h"

#include <norvane_1/report_records.h>

namespace bt {

// Appends the callers of the frame at `registers` to `frames`; false when
// the unwinder won't even start.
bool walkStack(FrameUnwinder& unwinder, ModuleRanges const& modules, norvane_1::Context const& registers,
               norvane_1::RawStack const& rawStack, norvane_1::CleanStack& frames);

}  // namespace bt
