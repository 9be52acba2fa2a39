// "Stack.raw.0x<tid>" and "Stack.clean.0x<tid>" sections. Portable code
// only; no I/O.
//
// These bodies are tables, not key text: a raw line is "slot: return
// address", a clean line "kind | stack slot | address[ | module]". They are
// read line by line without regular expressions, since a report may carry
// thousands of such lines.
#include "stack_sections.h"

#include "hex_text.h"
#include "regex_text.h"

#include <vantix_2_18/strings.h>

#include <algorithm>
#include <string_view>

namespace norvane_1 {
namespace internal {
namespace {

constexpr std::wstring_view kPrefix = L"Stack";
constexpr wchar_t kColumnDivider[] = L" | ";

std::wstring frameKindToString(StackFrame const& frame) {
    switch (frame.kind) {
        case 1: return L"?";
        case 2: return L"+";
        case 4: return L"!";
        default: return L"-";
    }
}

std::uint32_t frameKindFromString(std::wstring const& text) {
    if (text == L"?") return 1;
    if (text == L"+" || text == L" ") return 2;
    if (text == L"!") return 4;
    return 0;
}

std::wstring rawStackText(RawStack const& stack) {
    std::wstring text;
    text.reserve(stack.size() * 39);  // "0x" + 16, ": ", "0x" + 16, LF
    for (auto const& slot : stack) {
        appendAddress(text, slot.first);
        text += L": ";
        appendAddress(text, slot.second);
        text += L'\n';
    }
    return text;
}

std::wstring cleanStackText(CleanStack frames) {
    // Stable, so that frames of one slot keep their order and a report read and
    // written again gives the same text.
    std::stable_sort(frames.begin(), frames.end(),
                     [](StackFrame const& a, StackFrame const& b) { return a.stackAddress < b.stackAddress; });
    std::wstring text;
    text.reserve(frames.size() * 64);
    for (auto const& frame : frames) {
        text += frameKindToString(frame);
        text += kColumnDivider;
        appendAddress(text, frame.stackAddress);
        text += kColumnDivider;
        appendAddress(text, frame.address);
        if (!frame.module.empty()) {
            text += kColumnDivider;
            text += frame.module;
        }
        text += L'\n';
    }
    return text;
}

template <typename LineReader>
void forEachLine(std::wstring const& text, LineReader&& read) {
    std::wstring::size_type start = 0;
    while (start < text.size()) {
        auto end = text.find(L'\n', start);
        if (end == std::wstring::npos) end = text.size();
        read(text.substr(start, end - start));
        start = end + 1;
    }
}

RawStack parseRawStack(std::wstring const& text) {
    RawStack stack;
    forEachLine(text, [&stack](std::wstring const& line) {
        auto const colon = line.find(L':');
        if (colon == std::wstring::npos || colon == 0 || colon + 1 == line.size()) return;
        auto const slot = parseHex64(trim(line.substr(0, colon)));
        stack[slot] = parseHex64(trim(line.substr(colon + 1)));
    });
    return stack;
}

CleanStack parseCleanStack(std::wstring const& text) {
    CleanStack frames;
    forEachLine(text, [&frames](std::wstring const& line) {
        if (line.empty()) return;
        auto const columns = VANTIX_2_18::strings::split_string(line, kColumnDivider, 0);
        if (columns.empty()) return;
        StackFrame frame;
        frame.kind = frameKindFromString(columns[0]);
        if (columns.size() >= 3) {
            frame.stackAddress = parseHex64(trim(columns[1]));
            frame.address = parseHex64(trim(columns[2]));
        }
        if (columns.size() >= 4) frame.module = columns[3];
        frames.push_back(frame);
    });
    return frames;
}

}  // namespace

void writeStackSections(RawStackMap const& rawStacks, CleanStackMap const& cleanStacks, StringMap& sections) {
    for (auto const& entry : rawStacks) {
        sections[L"Stack.raw." + threadIdToString(entry.first)] = rawStackText(entry.second);
    }
    for (auto const& entry : cleanStacks) {
        sections[L"Stack.clean." + threadIdToString(entry.first)] = cleanStackText(entry.second);
    }
}

void readStackSections(StringMap const& sections, RawStackMap& rawStacks, CleanStackMap& cleanStacks) {
    for (auto const& section : sections) {
        if (section.first.compare(0, kPrefix.size(), kPrefix) != 0) continue;
        auto const parts = VANTIX_2_18::strings::split_string(section.first, L".", 0);
        if (parts.size() < 2) continue;
        auto const threadId = parseHex32(trim(parts.back()));
        // "Stack.<tid>" is an older name of a raw stack.
        if (parts.size() == 2 || parts[1] == L"raw") {
            rawStacks[threadId] = parseRawStack(section.second);
        } else if (parts.size() == 3 && parts[1] == L"clean") {
            cleanStacks[threadId] = parseCleanStack(section.second);
        }
    }
}

}  // namespace internal
}  // namespace norvane_1
