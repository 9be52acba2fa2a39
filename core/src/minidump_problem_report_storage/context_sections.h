// "Context.0x<thread id>" sections: the 17 saved registers of a thread.
// Records in, sections out, and back; no I/O. Portable code only.
#pragma once

#include <norvane_1/report_records.h>

namespace norvane_1 {
namespace internal {

// Sets one section per context, replacing a section of the same name.
void writeContextSections(ContextMap const& contexts, StringMap& sections);
// Reads every section whose name begins with "Context" into `contexts`,
// replacing the record of its thread. The thread id is the hexadecimal text
// behind the name's first dot (none, or nothing behind it: thread 0); a
// register that is missing reads as 0.
void readContextSections(StringMap const& sections, ContextMap& contexts);

}  // namespace internal
}  // namespace norvane_1
