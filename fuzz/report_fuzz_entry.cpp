#include "report_fuzz_entry.h"

#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "minidump_problem_report_storage/hex_text.h"
#include "minidump_problem_report_storage/regex_text.h"

#include <vantix_2_18/strings.h>
#include <vantix_2_18/utf.h>

#include <boost/lexical_cast.hpp>
#include <boost/regex.hpp>

#include <algorithm>
#include <cstring>
#include <exception>
#include <sstream>
#include <string>
#include <vector>

namespace norvane_fuzz {
namespace {

namespace traits = norvane_1::string_traits;
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
    return "first difference at character " + std::to_string(from) + ": expected " +
           shown(expected.substr(from), 120) + ", actual " + shown(actual.substr(std::min(from, actual.size())), 120);
}

template <typename Value>
std::string differs(char const* what, Value const& expected, Value const& actual) {
    std::ostringstream out;
    out << what << ": wrote " << expected << ", read " << actual;
    return out.str();
}

std::string differs(char const* what, std::wstring const& expected, std::wstring const& actual) {
    return std::string(what) + ": wrote " + shown(expected) + ", read " + shown(actual);
}

std::string differs(std::string const& what, std::uint64_t expected, std::uint64_t actual) {
    return differs(what.c_str(), expected, actual);
}

// Numbers taken from the input's bytes, eight at a time, over and over.
class Words {
public:
    Words(std::uint8_t const* data, std::size_t size) : m_data(data), m_size(size) {}

    std::uint64_t next() {
        std::uint64_t value = 0;
        for (int i = 0; i < 8 && m_size != 0; ++i) {
            value = (value << 8) | m_data[m_position % m_size];
            ++m_position;
        }
        return value;
    }
    std::uint32_t next32() { return static_cast<std::uint32_t>(next()); }

private:
    std::uint8_t const* m_data;
    std::size_t m_size;
    std::size_t m_position = 0;
};

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
constexpr wchar_t const* kRewrittenSections[] = {L"Exception", L"Assertion", L"ProcessDump", L"Dump",
                                                 L"Products"};

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
        return "report round trip: reading the written report threw " + std::string(error.what()) +
               "\n  written " + shown(written, 400);
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
// Value forms, directly.

bool isHexDigit(wchar_t c) {
    return (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F');
}

// `text` with every character behind an optional "0x"/"0X" that is no hex
// digit replaced by "0": what the hexadecimal reader must read alike.
std::wstring withNonDigitsAsZero(std::wstring text) {
    std::size_t const start =
        text.size() >= 2 && text[0] == L'0' && (text[1] == L'x' || text[1] == L'X') ? 2 : 0;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (!isHexDigit(text[i])) text[i] = L'0';
    }
    return text;
}

std::string checkHexReader(std::wstring const& text) {
    auto const lines = VANTIX_2_18::strings::split_string(text, L"\n", 0);
    std::size_t const count = std::min<std::size_t>(lines.size(), 64);
    for (std::size_t i = 0; i < count; ++i) {
        std::wstring const& line = lines[i];
        std::wstring const digits = withNonDigitsAsZero(line);
        if (internal::parseHex64(line) != internal::parseHex64(digits)) {
            return differs("hex reader (64 bits) counts a non-digit as other than 0 in " + shown(line),
                           internal::parseHex64(digits), internal::parseHex64(line));
        }
        if (internal::parseHex32(line) != internal::parseHex32(digits)) {
            return differs("hex reader (32 bits) counts a non-digit as other than 0 in " + shown(line),
                           internal::parseHex32(digits), internal::parseHex32(line));
        }
    }
    return std::string();
}

std::string checkNumbers(Words words) {
    for (int i = 0; i < 4; ++i) {
        std::uint64_t const address = words.next();
        std::wstring const text = traits::addrToString(address);
        if (traits::stringToAddr(text) != address) {
            return differs("address " + utf8(text), address, traits::stringToAddr(text));
        }
        if (internal::parseHex64(text) != address) {
            return differs("address (hex reader) " + utf8(text), address, internal::parseHex64(text));
        }
        // The address reader takes decimal text as well.
        std::wstring const decimal = std::to_wstring(address);
        if (traits::stringToAddr(decimal) != address) {
            return differs("decimal address " + utf8(decimal), address, traits::stringToAddr(decimal));
        }
        auto const number = static_cast<std::int64_t>(words.next());
        std::int64_t read = 0;
        try {
            read = traits::stringToNumber(traits::numberToString(number));
        } catch (std::exception const& error) {
            return "decimal " + utf8(traits::numberToString(number)) + ": reading threw " + error.what();
        }
        if (read != number) return differs("decimal", number, read);
        std::uint32_t const threadId = words.next32();
        std::wstring const threadText = internal::threadIdToString(threadId);
        if (internal::parseHex32(threadText) != threadId) {
            return differs("thread id " + utf8(threadText), threadId, internal::parseHex32(threadText));
        }
    }
    return std::string();
}

// The escape table leaves "<br>" and "&amp;" in a value as they are, and
// writes CR LF and a lone CR as "<br>", which reads back as LF. A value with
// any of these never comes back as it was: the report text is made so.
bool escapesReversibly(std::wstring const& text) {
    return text.find(L'\r') == std::wstring::npos && text.find(L"<br>") == std::wstring::npos &&
           text.find(L"&amp;") == std::wstring::npos;
}

std::string checkEscapedText(std::wstring const& text) {
    std::wstring const encoded = traits::encodeString(text);
    if (encoded.find_first_of(L" \r\n") != std::wstring::npos) {
        return "escaped text still holds a blank or line break: " + shown(encoded);
    }
    std::wstring const decoded = traits::decodeString(encoded);
    if (escapesReversibly(text) && decoded != text) return differs("escaped text", text, decoded);
    // Whatever the value, its escaped form is a fixed point.
    std::wstring const again = traits::encodeString(decoded);
    if (again != encoded) return differs("escaped text escaped again", encoded, again);
    return std::string();
}

// ---------------------------------------------------------------------------
// Value forms through their sections.

// Key text trims each value, and of all white space only blanks and line
// breaks are escaped: other white space at either end of a value is lost.
bool keepsItsEnds(std::wstring const& text) {
    static boost::wregex const space = internal::readerExpression(L"[\\s]");
    std::wstring const encoded = traits::encodeString(text);
    if (encoded.empty()) return true;
    auto const isSpace = [](wchar_t c) { return boost::regex_match(std::wstring(1, c), space); };
    return internal::trim(encoded) == encoded && !isSpace(encoded.front()) && !isSpace(encoded.back());
}

bool travelsAsValue(std::wstring const& text) { return escapesReversibly(text) && keepsItsEnds(text); }

bool sameGuid(norvane_1::Guid const& a, norvane_1::Guid const& b) {
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
           std::memcmp(a.Data4, b.Data4, sizeof a.Data4) == 0;
}

template <typename Field>
std::string compareText(char const* what, Field const& expected, Field const& actual, bool travels) {
    if (travels && expected != actual) return differs(what, expected, actual);
    return std::string();
}

#define NORVANE_FUZZ_CHECK(expression)         \
    do {                                       \
        std::string failure = (expression);    \
        if (!failure.empty()) return failure;  \
    } while (false)

std::string checkSections(std::wstring const& text, std::wstring const& other, std::uint8_t kind,
                          Words words) {
    ProblemReportStorage out;
    bool const textTravels = travelsAsValue(text);
    bool const otherTravels = travelsAsValue(other);
    switch (kind % 3) {
        case 0: {
            norvane_1::Exception exception;
            exception.code = words.next();
            exception.address = words.next();
            exception.description = text;
            exception.module = other;
            out.setException(exception);
            break;
        }
        case 1: {
            norvane_1::Assertion assertion;
            assertion.expression = text;
            assertion.file = other;
            assertion.line = words.next32();
            out.setAssertion(assertion);
            break;
        }
        default: {
            norvane_1::ProcessDump dump;
            dump.description = text;
            dump.executable = other;
            dump.commandLine = text + other;
            out.setProcessDump(dump);
            break;
        }
    }
    out.setCrashedPid(words.next32());
    out.setCrashedTid(words.next32());

    norvane_1::ModuleInfo module;
    module.FullName = other;
    module.SymbolName = text;
    module.Base = words.next();
    module.Begin = words.next();
    module.End = words.next();
    module.Timestamp = words.next();
    module.Size = words.next();
    module.Age = words.next();
    module.Guid.Data1 = words.next32();
    module.Guid.Data2 = static_cast<std::uint16_t>(words.next());
    module.Guid.Data3 = static_cast<std::uint16_t>(words.next());
    std::uint64_t const tail = words.next();
    for (int i = 0; i < 8; ++i) module.Guid.Data4[i] = static_cast<std::uint8_t>(tail >> (8 * i));
    out.getModuleInfo().push_back(module);

    norvane_1::Context context;
    context.EAX = words.next();
    context.EBP = words.next();
    context.EIP = words.next();
    context.ESP = words.next();
    context.R8 = words.next();
    context.R15 = words.next();
    std::uint32_t const contextThread = words.next32();
    out.addContext(context, contextThread);

    norvane_1::RawStack raw;
    for (int i = 0; i < 3; ++i) {
        std::uint64_t const slot = words.next();
        raw[slot] = words.next();
    }
    std::uint32_t const rawThread = words.next32();
    out.addStack(raw, rawThread);

    // Frames with distinct slots, in slot order, of each kind that has a
    // letter of its own. The module column is written as it is, so only a
    // plain file name can come back.
    norvane_1::CleanStack frames;
    std::uint64_t const firstSlot = words.next() & ~std::uint64_t{0xFF};
    constexpr std::uint32_t kKinds[] = {4, 2, 1, 0};
    for (std::uint32_t i = 0; i < 4; ++i) {
        norvane_1::StackFrame frame;
        frame.kind = kKinds[i];
        frame.stackAddress = firstSlot + 8 * i;
        frame.address = words.next();
        if (i % 2 == 0) frame.module = L"crash_host";
        frames.push_back(frame);
    }
    std::uint32_t const cleanThread = words.next32();
    out.addStack(frames, cleanThread);

    std::wstring const written = out.toString();
    ProblemReportStorage in;
    try {
        in.fromString(written);
    } catch (std::exception const& error) {
        return "values through sections: reading threw " + std::string(error.what()) + "\n  written " +
               shown(written, 400);
    }

    if (out.isException()) {
        auto const& a = out.getException();
        auto const& b = in.getException();
        if (a.code != b.code) return differs("Exception Code", a.code, b.code);
        if (a.address != b.address) return differs("Exception Address", a.address, b.address);
        NORVANE_FUZZ_CHECK(compareText("Exception Description", a.description, b.description, textTravels));
        NORVANE_FUZZ_CHECK(compareText("Exception Module", a.module, b.module, otherTravels));
    } else if (out.isAssertion()) {
        auto const& a = out.getAssertion();
        auto const& b = in.getAssertion();
        if (a.line != b.line) return differs("Assertion Line", a.line, b.line);
        NORVANE_FUZZ_CHECK(compareText("Assertion Expression", a.expression, b.expression, textTravels));
        NORVANE_FUZZ_CHECK(compareText("Assertion File", a.file, b.file, otherTravels));
    } else {
        auto const& a = out.getProcessDump();
        auto const& b = in.getProcessDump();
        NORVANE_FUZZ_CHECK(compareText("ProcessDump Description", a.description, b.description, textTravels));
        NORVANE_FUZZ_CHECK(compareText("ProcessDump Executable", a.executable, b.executable, otherTravels));
        NORVANE_FUZZ_CHECK(compareText("ProcessDump Command line", a.commandLine, b.commandLine,
                                       travelsAsValue(a.commandLine)));
    }
    if (in.getCrashedPid() != out.getCrashedPid()) return differs("CrashedPID", out.getCrashedPid(), in.getCrashedPid());
    if (in.getCrashedTid() != out.getCrashedTid()) return differs("CrashedTID", out.getCrashedTid(), in.getCrashedTid());

    if (in.getModuleInfo().size() != 1) {
        return differs("module count", std::size_t{1}, in.getModuleInfo().size());
    }
    auto const& m = in.getModuleInfo().front();
    if (m.Base != module.Base || m.Begin != module.Begin || m.End != module.End || m.Timestamp != module.Timestamp ||
        m.Size != module.Size || m.Age != module.Age) {
        return "module numbers read back changed";
    }
    if (!sameGuid(m.Guid, module.Guid)) return "module Guid read back changed";
    NORVANE_FUZZ_CHECK(compareText("module FullName", module.FullName, m.FullName, otherTravels));
    NORVANE_FUZZ_CHECK(compareText("module SymbolName", module.SymbolName, m.SymbolName, textTravels));

    auto const contextRead = in.getContextMap().find(contextThread);
    if (in.getContextMap().size() != 1 || contextRead == in.getContextMap().end()) {
        return "context of thread " + utf8(internal::threadIdToString(contextThread)) + " not read back";
    }
    auto const& c = contextRead->second;
    if (c.EAX != context.EAX || c.EBP != context.EBP || c.EIP != context.EIP || c.ESP != context.ESP ||
        c.R8 != context.R8 || c.R15 != context.R15 || c.EBX != 0 || c.R9 != 0) {
        return "context of thread " + utf8(internal::threadIdToString(contextThread)) + " read back changed";
    }

    auto const rawRead = in.getStackMap().find(rawThread);
    if (in.getStackMap().size() != 1 || rawRead == in.getStackMap().end() || rawRead->second != raw) {
        return "raw stack of thread " + utf8(internal::threadIdToString(rawThread)) + " read back changed";
    }

    auto const cleanRead = in.getStackFramesMap().find(cleanThread);
    if (in.getStackFramesMap().size() != 1 || cleanRead == in.getStackFramesMap().end()) {
        return "clean stack of thread " + utf8(internal::threadIdToString(cleanThread)) + " not read back";
    }
    auto const& readFrames = cleanRead->second;
    if (readFrames.size() != frames.size()) {
        return differs("clean stack frame count", frames.size(), readFrames.size());
    }
    for (std::size_t i = 0; i < frames.size(); ++i) {
        auto const& a = frames[i];
        auto const& b = readFrames[i];
        if (a.kind != b.kind || a.stackAddress != b.stackAddress || a.address != b.address || a.module != b.module) {
            return "clean stack frame " + std::to_string(i) + " read back changed";
        }
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
    std::wstring const text =
        VANTIX_2_18::utf::from_utf8(std::string(reinterpret_cast<char const*>(data), size));
    NORVANE_FUZZ_CHECK(checkRoundTrip(text));
    readAsKeyText(text);

    Words const words(data, size);
    NORVANE_FUZZ_CHECK(checkNumbers(words));
    NORVANE_FUZZ_CHECK(checkHexReader(text));
    NORVANE_FUZZ_CHECK(checkEscapedText(text));
    // A second value from the same text: its second half, so that the two
    // differ and each can be empty.
    std::wstring const other = text.substr(text.size() / 2);
    NORVANE_FUZZ_CHECK(checkSections(text, other, size == 0 ? 0 : data[size - 1], words));
    return std::string();
}

}  // namespace norvane_fuzz
