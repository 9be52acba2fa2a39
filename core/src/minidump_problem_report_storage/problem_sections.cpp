// The sections that say what went wrong: "Exception", "Assertion" and
// "ProcessDump", with the facts the three share. Portable code only; no I/O.
//
// Writer and reader are not mirror images (problem_sections.h says how).
#include "problem_sections.h"

#include <norvane_1/string_traits.h>

#include "key_text.h"

namespace norvane_1 {
namespace internal {
namespace {

using string_traits::addrToString;
using string_traits::decodeString;
using string_traits::encodeString;
using string_traits::numberToString;
using string_traits::stringToAddr;

// The keys every problem section ends with, in key order among its own.
void addFacts(StringMap& keys, ProblemFacts const& facts) {
    keys[L"CrashedPID"] = numberToString(facts.crashedPid);
    keys[L"CrashedTID"] = numberToString(facts.crashedTid);
    keys[L"Product"] = facts.failedProductName;
    keys[L"ReportPath"] = facts.reportPath;
    if (facts.bitness >= 0) keys[L"ProcessBitness"] = facts.bitness == 1 ? L"32" : L"64";
}

// Stores the low 32 bits of a decimal value; an empty or missing value leaves
// the field. Anything but a decimal number throws boost::bad_lexical_cast.
void readDecimal(StringMap const& keys, wchar_t const* key, std::uint32_t& field) {
    std::wstring const value = get(keys, key);
    if (value.empty()) return;
    field = static_cast<std::uint32_t>(string_traits::stringToNumber(value));
}

// The facts are read in three parts, so that each section reads them in its
// own order: what stands when a damaged number stops a reader is the same
// as it always was.
void readIds(StringMap const& keys, ProblemFacts& facts) {
    readDecimal(keys, L"CrashedTID", facts.crashedTid);
    readDecimal(keys, L"CrashedPID", facts.crashedPid);
}

void readProductAndPath(StringMap const& keys, ProblemFacts& facts) {
    facts.failedProductName = get(keys, L"Product");
    facts.reportPath = get(keys, L"ReportPath");
}

void readBitness(StringMap const& keys, ProblemFacts& facts) {
    std::wstring const bitness = get(keys, L"ProcessBitness");
    if (!bitness.empty()) facts.bitness = bitness == L"32" ? 1 : 0;
}

}  // namespace

std::wstring exceptionSectionText(Exception const& exception, ProblemFacts const& facts) {
    StringMap keys;
    keys[L"Address"] = addrToString(exception.address);
    keys[L"Code"] = addrToString(exception.code);
    keys[L"Description"] = encodeString(exception.description);
    keys[L"Module"] = encodeString(exception.module);
    addFacts(keys, facts);
    return processMapToSection(keys);
}

std::wstring assertionSectionText(Assertion const& assertion, ProblemFacts const& facts) {
    StringMap keys;
    keys[L"Expression"] = encodeString(assertion.expression);
    keys[L"File"] = encodeString(assertion.file);
    keys[L"Line"] = numberToString(assertion.line);
    addFacts(keys, facts);
    return processMapToSection(keys);
}

std::wstring processDumpSectionText(ProcessDump const& processDump, ProblemFacts const& facts) {
    StringMap keys;
    keys[L"Command line"] = encodeString(processDump.commandLine);
    keys[L"Description"] = encodeString(processDump.description);
    keys[L"Executable"] = encodeString(processDump.executable);
    addFacts(keys, facts);
    return processMapToSection(keys);
}

void readExceptionSection(std::wstring const& text, Exception& exception, ProblemFacts& facts) {
    if (text.empty()) return;
    StringMap keys;
    processSectionToMap(text, keys, {});
    exception.address = stringToAddr(get(keys, L"Address"));
    exception.code = stringToAddr(get(keys, L"Code"));
    exception.description = decodeString(get(keys, L"Description"));
    exception.module = decodeString(get(keys, L"Module"));
    readProductAndPath(keys, facts);
    readIds(keys, facts);
    readBitness(keys, facts);
}

void readAssertionSection(std::wstring const& text, Assertion& assertion, ProblemFacts& facts) {
    if (text.empty()) return;
    // The one problem section whose values may be wrapped over several lines.
    static KnownKeys const assertionKeys(
        {L"Expression", L"File", L"Line", L"CrashedPID", L"CrashedTID", L"Product", L"ReportPath", L"ProcessBitness"});
    StringMap keys;
    assertionKeys.read(text, keys);
    assertion.expression = decodeString(get(keys, L"Expression"));
    assertion.file = decodeString(get(keys, L"File"));
    readDecimal(keys, L"Line", assertion.line);
    readIds(keys, facts);
    readProductAndPath(keys, facts);
    readBitness(keys, facts);
}

void readProcessDumpSection(std::wstring const& text, ProcessDump& processDump, ProblemFacts& facts) {
    if (text.empty()) return;
    StringMap keys;
    processSectionToMap(text, keys, {});
    processDump.executable = decodeString(get(keys, L"Executable"));
    processDump.commandLine = decodeString(get(keys, L"Command line"));
    processDump.description = decodeString(get(keys, L"Description"));
    readIds(keys, facts);
    readProductAndPath(keys, facts);
    readBitness(keys, facts);
}

std::wstring failedProductName(std::wstring const& productText) {
    static KnownKeys const productKeys({L"Package ID", L"Package Contents", L"Build Number"});
    StringMap keys;
    productKeys.read(productText, keys);
    return get(keys, L"Package Contents") + L"; " + get(keys, L"Build Number");
}

}  // namespace internal
}  // namespace norvane_1
