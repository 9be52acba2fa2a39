// "Stack.raw.0x<tid>" and "Stack.clean.0x<tid>" sections. Records in,
// sections out, and back; no I/O. Portable code only.
#pragma once

#include <norvane_1/report_records.h>

namespace norvane_1 {
namespace internal {

// Sets one section per stack, replacing a section of the same name. Clean
// frames are written in the order of their stack slots; the records stay
// as they are.
void writeStackSections(RawStackMap const& rawStacks, CleanStackMap const& cleanStacks, StringMap& sections);
// Reads "Stack.raw.<tid>" and the older "Stack.<tid>" as raw stacks and
// "Stack.clean.<tid>" as clean ones, replacing the record of the thread.
void readStackSections(StringMap const& sections, RawStackMap& rawStacks, CleanStackMap& cleanStacks);

}  // namespace internal
}  // namespace norvane_1
