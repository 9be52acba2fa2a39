// The sections that say what went wrong: "Exception", "Assertion" and
// "ProcessDump". Text in, records out, and back; no I/O. Portable code only.
#pragma once

#include <norvane_1/report_records.h>

#include <cstdint>
#include <string>

namespace norvane_1 {
namespace internal {

// What the three problem sections write beside their own record.
struct ProblemFacts {
    std::uint32_t crashedPid = 0;
    std::uint32_t crashedTid = 0;
    int bitness = -1;  // -1 unknown (not written), 1 for 32 bits, 0 for 64 bits
    std::wstring failedProductName;
    std::wstring reportPath;
};

std::wstring exceptionSectionText(Exception const& exception, ProblemFacts const& facts);
std::wstring assertionSectionText(Assertion const& assertion, ProblemFacts const& facts);
std::wstring processDumpSectionText(ProcessDump const& processDump, ProblemFacts const& facts);

// The readers change nothing for an empty text. Otherwise missing text
// fields read as empty and addresses as 0, but decimal fields and the
// bitness keep their value when their key is missing or empty. A decimal
// that is no number throws boost::bad_lexical_cast; what was read before it
// stays.
void readExceptionSection(std::wstring const& text, Exception& exception, ProblemFacts& facts);
void readAssertionSection(std::wstring const& text, Assertion& assertion, ProblemFacts& facts);
void readProcessDumpSection(std::wstring const& text, ProcessDump& processDump, ProblemFacts& facts);

// The "Product" value of a problem section: "Package Contents", "; " and
// "Build Number" of a product text.
std::wstring failedProductName(std::wstring const& productText);

}  // namespace internal
}  // namespace norvane_1
