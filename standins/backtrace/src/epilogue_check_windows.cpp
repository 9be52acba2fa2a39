// Windows code only.
#include "epilogue_check_windows.h"

#include <cstdint>
#include <cstring>

namespace bt {
namespace {

constexpr int kMostSteps = 1024;  // far more than any epilogue has pops and jumps

bool isRex(unsigned char byte) { return (byte & 0xF0) == 0x40; }
bool isPop(unsigned char byte) { return byte >= 0x58 && byte <= 0x5F; }

// An epilogue may open with "add $n,%rsp" or "lea n(reg),%rsp" (REX.W): its
// length, or 0.
int stackAdjustmentLength(unsigned char const* pc) {
    if ((pc[0] & 0xF8) != 0x48) return 0;
    switch (pc[1]) {
        case 0x81: return pc[2] == 0xC4 ? 7 : 0;
        case 0x83: return pc[2] == 0xC4 ? 4 : 0;
        case 0x8D: return (pc[2] >> 6) == 1 ? 4 : (pc[2] >> 6) == 2 ? 7 : 0;
        default: return 0;
    }
}

}  // namespace

bool epilogueSearchEnds(unsigned char const* pc, DWORD64 imageBase, RUNTIME_FUNCTION const& function) {
    auto const inside = [&](unsigned char const* at) {
        auto const offset = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(at) - imageBase);
        return offset >= function.BeginAddress && offset < function.EndAddress;
    };
    pc += stackAdjustmentLength(pc);
    for (int step = 0; step < kMostSteps; ++step) {
        if (isRex(*pc)) ++pc;
        if (isPop(*pc)) {
            ++pc;
            continue;
        }
        if (*pc == 0xE9) {  // jmp rel32
            std::int32_t displacement;
            std::memcpy(&displacement, pc + 1, sizeof displacement);
            pc += 5 + displacement;
        } else if (*pc == 0xEB) {  // jmp rel8
            pc += 2 + static_cast<signed char>(pc[1]);
        } else {
            return true;
        }
        if (!inside(pc)) return true;
    }
    return false;
}

}  // namespace bt
