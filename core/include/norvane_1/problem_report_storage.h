// One problem report in memory, and its text.
//
// A report holds typed records (the exception, assertion or process dump,
// register contexts, stacks, modules) and a section map of named texts.
// toString() brings the records into the section map and writes every
// section in a fixed order; fromString() reads sections back into records.
// Sections the report has no record for pass through unchanged.
//
//   norvane_1::ProblemReportStorage report;
//   norvane_1::Exception e;
//   e.code = 0xC0000005;
//   e.description = L"EXCEPTION_ACCESS_VIOLATION";
//   report.setException(e);
//   report.setDumpValue(L"Path", L"C:\\logs\\crash.dmp");
//   std::wstring text = report.toString();
//
//   norvane_1::ProblemReportStorage copy;
//   copy.fromString(text);  // may throw boost::bad_lexical_cast on a damaged number
//
// The class takes no lock: whoever shares an instance serialises access.
#pragma once

#include <norvane_1/export.h>
#include <norvane_1/report_records.h>

#include <gavrel2/path.h>
#include <gavrel2/variant.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace norvane_1 {

struct MinidumpAddressRange;

using AppPropertyPool = std::map<std::wstring, gavrel2::variant_t>;

class NORVANE_API ProblemReportStorage {
public:
    ProblemReportStorage();
    ProblemReportStorage(ProblemReportStorage const& other);
    ~ProblemReportStorage();
    ProblemReportStorage& operator=(ProblemReportStorage const& other);

    // Whole report. toString() is not const: it refreshes the section map.
    std::wstring toString();
    // Adds what `text` holds to this report; true whenever it returns.
    // Throws boost::bad_lexical_cast when "CrashedPID", "CrashedTID" or
    // "Line" is not a decimal number; what was read up to there stays.
    bool fromString(std::wstring const& text);

    // Kind: decided by the records' strings alone.
    bool isException() const;
    bool isAssertion() const;
    bool isProcessDump() const;

    // Field access.
    std::uint32_t& getCrashedTid();
    std::uint32_t& getCrashedPid();
    void setCrashedTid(std::uint32_t const& tid);
    void setCrashedPid(std::uint32_t const& pid);
    ContextMap& getContextMap();
    RawStackMap& getStackMap();
    CleanStackMap& getStackFramesMap();
    ModuleInfoList& getModuleInfo();
    Exception const& getException() const;
    Assertion const& getAssertion() const;
    ProcessDump const& getProcessDump() const;
    std::wstring const& getFailedProductName() const;

    // Section map. Looking a name up creates an empty entry for it, which is
    // harmless: empty sections are never written.
    std::wstring getSection(std::wstring const& name);
    void setSection(std::wstring const& name, std::wstring const& text);

    // Problem records.
    void setException(Exception const& exception);
    void setAssertion(Assertion const& assertion);
    void setProcessDump(ProcessDump const& processDump);
    void setDumpValue(std::wstring const& key, std::wstring const& value);
    std::wstring getDumpValue(std::wstring const& key) const;
    void setProcBitness(bool is32);
    // 1 for 32 bits, 0 for 64 bits, -1 unknown. An unknown bitness is worked
    // out from "bin32"/"bin64" in the module paths when possible.
    int getProcBitness();

    // Contexts and stacks, one per thread: a second record for a thread
    // that has one already is dropped.
    void addContext(Context const& context, std::uint32_t threadId);
    void addStack(RawStack const& stack, std::uint32_t threadId);
    void addStack(CleanStack const& frames, std::uint32_t threadId);
    void clearContexts();
    void clearStacks();

    // The module list. Modules are kept by position, with two indexes: by
    // Begin (each record) and by FullName (the record added last).
    void clearModuleInfo();
    // Appends a record for a range of a module map. With `skipKnown`, a
    // range whose name and begin are both indexed already is passed over.
    void addModuleInfo(MinidumpAddressRange const* range, bool skipKnown);
    // Prunes the list to the modules that a clean frame's address or a raw
    // stack's return address lies in (Base up to End). False, and nothing
    // pruned, when the report has no stacks.
    bool SyncModuleMapWithStackMap();
    bool findModule(std::uint64_t address, ModuleInfo& module) const;
    bool findModule(std::wstring const& name, ModuleInfo& module) const;
    // Names the exception's module after the module at its address.
    void updateExceptionSection();
    // Fills each module's debug facts (symbol file, time stamp, size, GUID,
    // age) from its file; false when the debug-help library can't be bound.
    bool updateModuleMap();

    // Product. detectProductInfo() reads "support.txt" in the directory above
    // each module's, and falls back on the product-location service.
    std::wstring detectProductInfo();
    // Sets product info and failed product name where they are still empty;
    // false if no product info could be found.
    bool updateProductInfo();
    void setProductInfo(std::wstring const& text);
    std::wstring getProductInfo() const;
    // "Package Contents" and "; " and "Build Number" of a product text.
    void setFailedProductName(std::wstring const& productText);

    // Appended data.
    // Brings in the sections registered in "norvane_custom_sections.txt" of
    // `directory` (null: the log directory), each from its file; false only
    // when no directory is known.
    bool appendCustomSections(wchar_t const* directory);
    void addPremortalLog(std::vector<std::wstring> const& lines);
    void setAppPropertyPool(AppPropertyPool const& pool);
    // The "Virtual Memory Size" of the Process section in units of 10000K,
    // rounded; false without crashed ids or that figure.
    bool getVMemFootPrint(std::uint64_t& value);

    // The directory of the report's files, with its trailing separator. An
    // empty path is ignored; getReportPath() is null while none is set.
    void setReportPath(std::wstring const& path);
    wchar_t const* getReportPath() const;

private:
    // Reads the three problem sections into their records and the facts they
    // share.
    void readProblemSections();
    // After the list has shrunk from `formerCount` records to `count`: drops
    // the sections of the positions gone and makes both indexes anew.
    void forgetModulesFrom(std::size_t count, std::size_t formerCount);
    void indexModules();

    StringMap m_dumpValues;
    std::wstring m_productInfo;
    RawStackMap m_stackMap;
    CleanStackMap m_stackFramesMap;
    ContextMap m_contextMap;
    ModuleInfoList m_moduleInfo;
    Exception m_exception;
    Assertion m_assertion;
    std::uint32_t m_crashedTid = 0;
    std::uint32_t m_crashedPid = 0;
    int m_procBitness = -1;  // -1 unknown, 1 for 32 bits, 0 for 64 bits
    ProcessDump m_processDump;
    AppPropertyPool m_appPropertyPool;
    std::map<std::uint64_t, std::uint64_t> m_moduleAddressIndex;  // Begin -> position
    std::map<std::wstring, std::uint64_t> m_moduleNameIndex;      // FullName -> position
    std::wstring m_failedProductName;
    StringMap m_sections;
    std::wstring m_premortalLog;
    std::wstring m_reportPath;
};

}  // namespace norvane_1
