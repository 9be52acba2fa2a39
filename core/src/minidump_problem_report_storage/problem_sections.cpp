// The sections that say what went wrong: "Exception", "Assertion" and
// "ProcessDump", with the facts the three share. Portable code only.
//
// Writer and reader are not mirror images: the readers take missing text
// fields as empty and addresses as 0, but leave decimal fields and the
// bitness alone when their key is missing or empty.
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "key_text.h"

namespace norvane_1 {
namespace {

using string_traits::addrToString;
using string_traits::decodeString;
using string_traits::encodeString;
using string_traits::numberToString;
using string_traits::stringToAddr;

// Stores the low 32 bits of a decimal value; an empty or missing value leaves
// the field. Anything but a decimal number throws boost::bad_lexical_cast.
void readDecimal(StringMap const& keys, wchar_t const* key, std::uint32_t& field) {
    std::wstring const value = get(keys, key);
    if (value.empty()) return;
    field = static_cast<std::uint32_t>(string_traits::stringToNumber(value));
}

}  // namespace

void ProblemReportStorage::setException(Exception const& exception) { m_exception = exception; }
void ProblemReportStorage::setAssertion(Assertion const& assertion) { m_assertion = assertion; }
void ProblemReportStorage::setProcessDump(ProcessDump const& processDump) {
    m_processDump = processDump;
}

void ProblemReportStorage::setDumpValue(std::wstring const& key, std::wstring const& value) {
    m_dumpValues[key] = value;
}

std::wstring ProblemReportStorage::getDumpValue(std::wstring const& key) const {
    return get(m_dumpValues, key);
}

void ProblemReportStorage::setProcBitness(bool is32) { m_procBitness = is32 ? 1 : 0; }

int ProblemReportStorage::getProcBitness() {
    if (m_procBitness != -1) return m_procBitness;
    for (auto const& module : m_moduleInfo) {
        if (module.FullName.find(L"bin32") != std::wstring::npos) return m_procBitness = 1;
        if (module.FullName.find(L"bin64") != std::wstring::npos) return m_procBitness = 0;
    }
    return -1;
}

std::wstring ProblemReportStorage::processExceptionToString() const {
    StringMap keys;
    keys[L"Address"] = addrToString(m_exception.address);
    keys[L"Code"] = addrToString(m_exception.code);
    keys[L"CrashedPID"] = numberToString(m_crashedPid);
    keys[L"CrashedTID"] = numberToString(m_crashedTid);
    keys[L"Description"] = encodeString(m_exception.description);
    keys[L"Module"] = encodeString(m_exception.module);
    keys[L"Product"] = m_failedProductName;
    keys[L"ReportPath"] = m_reportPath;
    processBitnessToString(keys);
    return processMapToSection(keys);
}

std::wstring ProblemReportStorage::processAssertionToString() const {
    StringMap keys;
    keys[L"CrashedPID"] = numberToString(m_crashedPid);
    keys[L"CrashedTID"] = numberToString(m_crashedTid);
    keys[L"Expression"] = encodeString(m_assertion.expression);
    keys[L"File"] = encodeString(m_assertion.file);
    keys[L"Line"] = numberToString(m_assertion.line);
    keys[L"Product"] = m_failedProductName;
    keys[L"ReportPath"] = m_reportPath;
    processBitnessToString(keys);
    return processMapToSection(keys);
}

std::wstring ProblemReportStorage::processProcessDumpToString() const {
    StringMap keys;
    keys[L"Command line"] = encodeString(m_processDump.commandLine);
    keys[L"CrashedPID"] = numberToString(m_crashedPid);
    keys[L"CrashedTID"] = numberToString(m_crashedTid);
    keys[L"Description"] = encodeString(m_processDump.description);
    keys[L"Executable"] = encodeString(m_processDump.executable);
    keys[L"Product"] = m_failedProductName;
    keys[L"ReportPath"] = m_reportPath;
    processBitnessToString(keys);
    return processMapToSection(keys);
}

void ProblemReportStorage::processBitnessToString(StringMap& keys) const {
    if (m_procBitness >= 0) keys[L"ProcessBitness"] = m_procBitness == 1 ? L"32" : L"64";
}

void ProblemReportStorage::processStringToBitness(StringMap const& keys) {
    std::wstring const value = get(keys, L"ProcessBitness");
    if (value.empty()) return;
    m_procBitness = value == L"32" ? 1 : 0;
}

void ProblemReportStorage::processStringToException(std::wstring const& text) {
    if (text.empty()) return;
    StringMap keys;
    processSectionToMap(text, keys, {});
    m_exception.address = stringToAddr(get(keys, L"Address"));
    m_exception.code = stringToAddr(get(keys, L"Code"));
    m_exception.description = decodeString(get(keys, L"Description"));
    m_exception.module = decodeString(get(keys, L"Module"));
    m_failedProductName = get(keys, L"Product");
    m_reportPath = get(keys, L"ReportPath");
    readDecimal(keys, L"CrashedTID", m_crashedTid);
    readDecimal(keys, L"CrashedPID", m_crashedPid);
    processStringToBitness(keys);
}

void ProblemReportStorage::processStringToAssertion(std::wstring const& text) {
    if (text.empty()) return;
    StringMap keys;
    // The one problem section whose values may be wrapped over several lines.
    static internal::KnownKeys const assertionKeys({L"Expression", L"File", L"Line", L"CrashedPID",
                                                    L"CrashedTID", L"Product", L"ReportPath",
                                                    L"ProcessBitness"});
    assertionKeys.read(text, keys);
    m_assertion.expression = decodeString(get(keys, L"Expression"));
    m_assertion.file = decodeString(get(keys, L"File"));
    readDecimal(keys, L"Line", m_assertion.line);
    readDecimal(keys, L"CrashedTID", m_crashedTid);
    readDecimal(keys, L"CrashedPID", m_crashedPid);
    m_failedProductName = get(keys, L"Product");
    m_reportPath = get(keys, L"ReportPath");
    processStringToBitness(keys);
}

void ProblemReportStorage::processStringToProcessDump(std::wstring const& text) {
    if (text.empty()) return;
    StringMap keys;
    processSectionToMap(text, keys, {});
    m_processDump.executable = decodeString(get(keys, L"Executable"));
    m_processDump.commandLine = decodeString(get(keys, L"Command line"));
    m_processDump.description = decodeString(get(keys, L"Description"));
    readDecimal(keys, L"CrashedTID", m_crashedTid);
    readDecimal(keys, L"CrashedPID", m_crashedPid);
    m_failedProductName = get(keys, L"Product");
    m_reportPath = get(keys, L"ReportPath");
    processStringToBitness(keys);
}

}  // namespace norvane_1
