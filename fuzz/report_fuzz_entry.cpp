#include "report_fuzz_entry.h"

#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/regex_text.h"

#include <vantix_2_18/strings.h>
#include <vantix_2_18/utf.h>

#include <boost/lexical_cast.hpp>
#include <boost/regex.hpp>

#include <algorithm>
#include <exception>
#include <string>

namespace norvane_fuzz {
namespace {

namespace internal = norvane_1::internal;

using norvane_1::ProblemReportStorage;

std::string utf8(std::wstring const& text) { return VANTIX_2_18::utf::to_utf8(text); }

// A text for a failure's message, cut to `limit` characters: the input that
// failed is kept whole by the fuzzer anyway.
std::string shown(std::wstring const& text, std::size_t limit = 200) {
    return '"' + utf8(text.substr(0, limit)) + (text.size() > limit ? "\"..." : "\"");
}

// Where two texts first differ.
std::string firstDifference(std::wstring const& expected, std::wstring const& actual) {
    auto const at = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end()).first;
    std::size_t const from = static_cast<std::size_t>(at - expected.begin());
    return "first difference at character " + std::to_string(from) + ": expected " + shown(expected.substr(from), 120) +
           ", actual " + shown(actual.substr(std::min(from, actual.size())), 120);
}

// ---------------------------------------------------------------------------
// The report round trip.

// A clean frame's module column is read as it stands, so from CR LF text it
// keeps the CR, and the writer puts it back. The reader drops the line ends
// at the end of a section, so that CR comes back only where its frame isn't
// the section's last, which the frames' order decides: the text can't round
// trip there. Both reports drop it before they are written.
void dropCarriageReturnsOfModules(ProblemReportStorage& report) {
    for (auto& stack : report.getStackFramesMap()) {
        for (auto& frame : stack.second) {
            while (!frame.module.empty() && frame.module.back() == L'\r') frame.module.pop_back();
        }
    }
}

// The sections that toString makes anew from values read out of key text or
// from the product text. Only the problem records' own fields are escaped:
// the other values, and the product text, are written as they stand.
constexpr wchar_t const* kRewrittenSections[] = {L"Exception", L"Assertion", L"ProcessDump", L"Dump", L"Products"};

// A value may go on over lines that begin with "[", and the reader trims it,
// so a last line "[Name]" followed by a blank or a tab comes out as "[Name]"
// and, written with its line end, is a head. A value can't hold a line that
// reads as a head: such a report doesn't round-trip.
bool writesAHeadInsideASection(ProblemReportStorage& report) {
    static boost::wregex const head = internal::readerExpression(L"[\\n\\r][[][\\w \\.]+[]][\\n\\r]");
    for (wchar_t const* name : kRewrittenSections) {
        std::wstring const written = report.getSection(name) + L"\n";
        if (boost::regex_search(written, head)) return true;
    }
    return false;
}

// Several sections may name one thread's stack ("Stack.1", "Stack.raw.0x1"):
// each is read in the order of the names, and the last wins. An empty stack is
// not written, so where the winner was empty, the next reading takes another
// of them: the text can't hold such a report.
template <typename StackMap>
bool emptyStackLost(StackMap const& first, StackMap const& second) {
    for (auto const& stack : first) {
        if (!stack.second.empty()) continue;
        auto const again = second.find(stack.first);
        if (again != second.end() && !again->second.empty()) return true;
    }
    return false;
}

std::string checkRoundTrip(std::wstring text) {
    // A head needs a line end behind it, so "[Name]" as the text's last line,
    // with none, is read as a line of the section above; written, that line
    // gets its line end and is a head from then on. The text is given a line
    // end, which changes nothing else a reader sees.
    if (!text.empty() && text.back() != L'\n' && text.back() != L'\r') text += L'\n';
    ProblemReportStorage first;
    try {
        first.fromString(text);
    } catch (boost::bad_lexical_cast const&) {
        // A damaged "CrashedPID", "CrashedTID" or "Line", the one documented
        // failure. The reader stops there, so the sections behind the damaged
        // one were never read into records and pass through as text, the
        // damaged number with them: such a report is not meant to come back
        // unchanged, nor to read without the same failure. It must still be
        // written and read again without harm.
        ProblemReportStorage again;
        try {
            again.fromString(first.toString());
        } catch (boost::bad_lexical_cast const&) {
        }
        return std::string();
    }
    dropCarriageReturnsOfModules(first);
    std::wstring const written = first.toString();
    bool const headInside = writesAHeadInsideASection(first);
    ProblemReportStorage second;
    try {
        second.fromString(written);
    } catch (std::exception const& error) {
        return "report round trip: reading the written report threw " + std::string(error.what()) + "\n  written " +
               shown(written, 400);
    }
    dropCarriageReturnsOfModules(second);
    std::wstring const rewritten = second.toString();
    if (rewritten != written && !headInside && !emptyStackLost(first.getStackMap(), second.getStackMap()) &&
        !emptyStackLost(first.getStackFramesMap(), second.getStackFramesMap())) {
        return "report round trip: the written report, read and written again, changed; " +
               firstDifference(written, rewritten);
    }
    return std::string();
}

// ---------------------------------------------------------------------------
// Readers that need only survive.

void readAsKeyText(std::wstring const& text) {
    norvane_1::StringMap out;
    norvane_1::processSectionToMap(text, out, {});
    norvane_1::processSectionToMap(text, out, {L"Package ID", L"Package Contents", L"Build Number"});
    auto const firstLine = text.substr(0, text.find(L'\n'));
    norvane_1::processSectionToMap(text, out, VANTIX_2_18::strings::split_string(firstLine, L"|", 0));
}

}  // namespace

std::string checkReportText(std::uint8_t const* data, std::size_t size) {
    std::wstring const text = VANTIX_2_18::utf::from_utf8(std::string(reinterpret_cast<char const*>(data), size));
    readAsKeyText(text);
    return checkRoundTrip(text);
}

}  // namespace norvane_fuzz
