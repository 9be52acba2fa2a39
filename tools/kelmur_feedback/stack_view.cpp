#include "stack_view.h"

#include "module_identity.h"

#include <vantix_2_18/utf.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <vector>

namespace kelmur_feedback {
namespace {

using VANTIX_2_18::utf::to_utf8;

constexpr std::uint32_t kExceptionFrame = 4;

std::string hex(std::uint64_t value, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%0*" PRIx64, digits, value);
    return text;
}

// Symbol tables hold C++ names mangled, and dynamic ones carry a version
// ("@@GLIBC_2.34"); a person wants the name as written.
std::string readableName(std::string name) {
    name = name.substr(0, name.find('@'));
    if (name.rfind("_Z", 0) != 0) return name;
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> plain(abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status),
                                                      &std::free);
    return status == 0 && plain ? plain.get() : name;
}

struct FrameText {
    std::string module;
    std::string where;  // function and line, or module offset and identity
};

FrameText describeFrame(norvane_1::StackFrame const& frame, norvane_1::ProblemReportStorage& report,
                        Symbolizer& symbolizer) {
    // A return address lies behind its call, perhaps already in the next
    // line or function; one byte back is the call itself.
    std::uint64_t const lookup = frame.kind == kExceptionFrame || frame.address == 0 ? frame.address
                                                                                     : frame.address - 1;
    norvane_1::ModuleInfo module;
    if (!report.findModule(lookup, module)) {
        return {frame.module.empty() ? "??" : to_utf8(frame.module), "(no module of the report)"};
    }
    std::string const name = frame.module.empty() ? fileNameOf(module.FullName) : to_utf8(frame.module);
    SourcePlace const place = symbolizer.lookUp({module.FullName, module.Base, identityBytes(module.Guid)}, lookup);
    std::string const offset = name + "+" + hex(frame.address - module.Base, 1);
    if (place.otherBuild) return {name, offset + " (" + debugIdentity(module) + "; the file here is another build)"};
    if (place.function.empty()) return {name, offset + " (" + debugIdentity(module) + ")"};
    std::string where = readableName(place.function);
    where += place.file.empty() ? " (" + offset + ")" : " at " + place.file + ":" + std::to_string(place.line);
    return {name, where};
}

// The module names in a column as wide as the thread's longest, so that
// the functions line up.
void printThread(std::ostream& out, std::uint32_t threadId, bool crashed, norvane_1::CleanStack const& frames,
                 norvane_1::ProblemReportStorage& report, Symbolizer& symbolizer) {
    out << "\nThread " << threadId << (crashed ? " (crashed)" : "") << '\n';
    if (frames.empty()) out << "  no frames\n";
    std::vector<FrameText> texts;
    std::size_t moduleWidth = 0;
    for (norvane_1::StackFrame const& frame : frames) {
        texts.push_back(describeFrame(frame, report, symbolizer));
        moduleWidth = std::max(moduleWidth, texts.back().module.size());
    }
    for (std::size_t i = 0; i < frames.size(); ++i) {
        char number[24];
        std::snprintf(number, sizeof number, "#%-3zu", i);
        out << "  " << number << ' ' << hex(frames[i].address, 16) << "  " << texts[i].module
            << std::string(moduleWidth - texts[i].module.size() + 2, ' ') << texts[i].where << '\n';
    }
}

}  // namespace

std::string fileNameOf(std::wstring const& path) {
    std::size_t const slash = path.find_last_of(L"/\\");
    return to_utf8(slash == std::wstring::npos ? path : path.substr(slash + 1));
}

void printStacks(std::ostream& out, norvane_1::ProblemReportStorage& report, Symbolizer& symbolizer) {
    norvane_1::CleanStackMap const& stacks = report.getStackFramesMap();
    if (stacks.empty()) {
        out << "\nThe report holds no stacks.\n";
        return;
    }
    std::uint32_t const crashed = report.getCrashedTid();
    auto const crashedStack = stacks.find(crashed);
    if (crashedStack != stacks.end()) printThread(out, crashed, true, crashedStack->second, report, symbolizer);
    for (auto const& [threadId, frames] : stacks) {
        if (threadId != crashed) printThread(out, threadId, false, frames, report, symbolizer);
    }
}

}  // namespace kelmur_feedback
