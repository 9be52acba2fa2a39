// Which bytes in front of an address make it a return address: each form of
// the x86-64 call, and near misses.
#include <backtrace/bt_helper.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

constexpr std::uint64_t kModuleBegin = 0x10000;
constexpr std::uint64_t kModuleEnd = 0x20000;
constexpr std::uint64_t kCandidate = 0x18000;

// An E8 call ending at the candidate, to `target`.
std::vector<unsigned char> callTo(std::uint64_t target) {
    auto const rel = static_cast<std::uint32_t>(target - kCandidate);
    return {0xE8, static_cast<unsigned char>(rel), static_cast<unsigned char>(rel >> 8),
            static_cast<unsigned char>(rel >> 16), static_cast<unsigned char>(rel >> 24)};
}

TEST(CallInstruction, EachFormIsToldFromOtherBytes) {
    struct Case {
        char const* form;
        std::vector<unsigned char> bytes;  // ending right in front of the candidate
        bool isCall;
        std::uint64_t candidate = kCandidate;
    };
    Case const cases[] = {
        {"E8 to code of a module", callTo(kModuleBegin + 0x100), true},
        {"E8 backwards", callTo(kCandidate - 0x5000), true},
        {"FF D0 register", {0xFF, 0xD0}, true},
        {"41 FF D3 register r11", {0x41, 0xFF, 0xD3}, true},
        {"FF 10 [rax]", {0xFF, 0x10}, true},
        {"FF 50 disp8", {0xFF, 0x50, 0x08}, true},
        {"FF 90 disp32", {0xFF, 0x90, 0x00, 0x10, 0x00, 0x00}, true},
        {"FF 15 rip+disp32", {0xFF, 0x15, 0x10, 0x20, 0x00, 0x00}, true},
        {"48 FF 15 rip+disp32", {0x48, 0xFF, 0x15, 0x10, 0x20, 0x00, 0x00}, true},
        {"FF 14 D8 base+index", {0xFF, 0x14, 0xD8}, true},
        {"FF 14 DD index*8+disp32, no base", {0xFF, 0x14, 0xDD, 0x00, 0x01, 0x00, 0x00}, true},
        {"FF 54 24 SIB disp8", {0xFF, 0x54, 0x24, 0x08}, true},
        {"FF 94 24 SIB disp32", {0xFF, 0x94, 0x24, 0x00, 0x01, 0x00, 0x00}, true},
        {"43 FF 94 6C SIB disp32, longest", {0x43, 0xFF, 0x94, 0x6C, 0x00, 0x01, 0x00, 0x00}, true},
        {"call ending the module's last function", {0xFF, 0xD0}, true, kModuleEnd},
        // Near misses.
        {"E8 to no module", callTo(0x900000), false},
        {"E9 jump", {0xE9, 0x00, 0x01, 0x00, 0x00}, false},
        {"FF E0 jump (/4)", {0xFF, 0xE0}, false},
        {"FF 18 far call (/3)", {0xFF, 0x18}, false},
        {"FF 90 one displacement byte short", {0xFF, 0x90, 0x00, 0x10, 0x00}, false},
        {"FF 50 without its disp8", {0xFF, 0x50}, false},
        {"FF 14 without its SIB", {0xFF, 0x14}, false},
        {"call in front of the module's start", {0xFF, 0xD0}, false, kModuleBegin},
        {"call outside every module", {0xFF, 0xD0}, false, 0x900000},
    };
    norvane_1::MinidumpAddressRange range{nullptr, kModuleBegin, kModuleBegin, kModuleEnd, 0};
    norvane_1::MinidumpModuleMap const map{&range, 1, &range, 1};
    for (Case const& c : cases) {
        unsigned char code[256] = {};  // zeros: "add [rax], al", no call
        std::memcpy(code + 128 - c.bytes.size(), c.bytes.data(), c.bytes.size());
        EXPECT_EQ(bt::isCallInstruction(c.candidate, code + 128, &map), c.isCall) << c.form;
    }
}

}  // namespace
