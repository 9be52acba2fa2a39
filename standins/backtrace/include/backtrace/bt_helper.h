// The back-trace library: tells return addresses from other stack words, and
// turns a thread's registers and the return addresses found on its stack
// into the frames of a clean stack.
//
//   auto helper = bt::createBtHelper();
//   helper->prepare(0);                         // this process
//   if (helper->isReady()) {
//       helper->createModule()->describe(base, end, 0, path, 1);   // each code range
//       norvane_1::CleanStack frames;
//       helper->walkStack(2, registers, rawStack, frames);         // 2: a 64-bit process
//   }
//
// It reads the crash library's public records (the module map, the register
// context, stack frames) and nothing else of it.
#pragma once

#include <norvane_1/module_map.h>
#include <norvane_1/report_records.h>

#include <gavrel2/sptr.h>

#include <cstdint>

namespace bt {

// The frame kinds of a clean stack, as walkStack gives them:
constexpr std::uint32_t kFrameScanned = 1;  // "?": a return address found by scanning the stack
constexpr std::uint32_t kFrameUnwound = 2;  // "+": the caller of the frame before, by unwind information

// Whether `word`, read from the stack slot at `slot`, points into the stack
// between that slot and `stackEnd`: a frame or local address rather than
// code. Such a word is no return address. `rawStack` is the scan's result so
// far; it is left as it is.
bool inStackArea(std::uint64_t word, std::uint64_t slot, std::uint64_t stackEnd, norvane_1::RawStack& rawStack);

// Whether `candidate` is a return address: the bytes in front of it are a
// call instruction (E8 rel32 to code of a module, or FF /2 in any of its
// addressing forms, with or without a REX prefix), and it lies in a module
// of `map`. `code` points at the copy of the byte at `candidate`; at least
// 128 bytes are valid on either side of it.
bool isCallInstruction(std::uint64_t candidate, unsigned char const* code, norvane_1::MinidumpModuleMap const* map);

// 1 for a 32-bit process, 0 for a 64-bit one, -1 when it can't be told.
// 0 means this process.
int is32pid(unsigned long const& processId);

// One module of the process whose stack is walked.
class IBtModule : public gavrel2::ref_counted_t {
public:
    // A range of the module: from `loadAddress` (or from `rangeBegin`, when
    // that isn't 0) up to `rangeEnd`, the file at `path`; `kind` 1 says that
    // the range holds code, the only kind there is.
    virtual void describe(std::uint64_t loadAddress, std::uint64_t rangeEnd, std::uint64_t rangeBegin,
                          wchar_t const* path, int kind) = 0;

protected:
    ~IBtModule() = default;
};

class IBtHelper : public gavrel2::ref_counted_t {
public:
    // Mode 0: the stacks are those of this process. Call it once, first.
    virtual void prepare(int mode) = 0;
    // False when this system offers no way to unwind.
    virtual bool isReady() = 0;
    // Appends the frames of the thread whose registers are `registers`
    // (`bitness` 2: a 64-bit process), callers after callees. The walk
    // follows the unwind information of the code from the registers on;
    // where that runs out before the stack's natural end, the return
    // addresses of `rawStack` above that point carry it on (kFrameScanned),
    // and unwinding resumes from each. The innermost frame, the one at the
    // registers themselves, is not among them. False when the stack can't
    // be walked at all (a 32-bit process, an unwinder that won't start).
    virtual bool walkStack(int bitness, norvane_1::Context registers, norvane_1::RawStack rawStack,
                           norvane_1::CleanStack& frames) = 0;
    // A module description that belongs to this helper.
    virtual gavrel2::sptr_t<IBtModule> createModule() = 0;

protected:
    ~IBtHelper() = default;
};

gavrel2::sptr_t<IBtHelper> createBtHelper();

}  // namespace bt
