// The records a problem report is made of.
#pragma once

#include <norvane_1/export.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace norvane_1 {

// Thread and process ids are 32 bits on every platform; addresses are 64.
using thread_id_t = std::uint32_t;
using process_id_t = std::uint32_t;
using address_t = std::uint64_t;

// Same layout as the Windows GUID: identity of a module's debug file.
struct Guid {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::uint8_t Data4[8] = {0, 0, 0, 0, 0, 0, 0, 0};
};

// The exception that ended a process.
struct Exception {
    std::uint64_t code = 0;
    std::wstring description;  // its name, such as "EXCEPTION_ACCESS_VIOLATION"
    address_t address = 0;
    std::wstring module;  // file name of the module at `address`
};

// A failed assertion.
struct Assertion {
    std::wstring expression;
    std::wstring file;
    std::uint32_t line = 0;
};

// A report on a live process.
struct ProcessDump {
    std::wstring executable;
    std::wstring commandLine;
    std::wstring description;  // why the dump was made
};

// One executable range of a module, with the facts of its debug file. The
// fields bear the names of their report keys.
struct NORVANE_API ModuleInfo {
    ModuleInfo();
    ModuleInfo(ModuleInfo const& other);
    ~ModuleInfo();
    ModuleInfo& operator=(ModuleInfo const& other);

    // Compares the file and range facts; Guid and Age take no part.
    bool operator==(ModuleInfo const& other) const;
    bool operator!=(ModuleInfo const& other) const { return !(*this == other); }

    std::wstring FullName;
    std::wstring SymbolName;
    address_t Base = 0;
    address_t Begin = 0;
    address_t End = 0;  // first address behind the range
    std::uint64_t Timestamp = 0;
    std::uint64_t Size = 0;
    ::norvane_1::Guid Guid;
    std::uint64_t Age = 0;
};

// One frame of a clean stack, as the back-trace library works it out.
struct StackFrame {
    address_t address = 0;       // code address of the frame
    address_t stackAddress = 0;  // its stack slot: the sort key of a clean stack
    std::wstring module;
    std::wstring detail1;  // back-trace library data, never written to a report
    std::wstring detail2;
    std::uint32_t detailNumber = 0;
    std::uint32_t kind = 0;  // 0, 1, 2, or 4 for the exception's own frame
};

// The saved registers of one thread, named by their report keys: the 32-bit
// names stand for the full 64-bit registers.
class Context {
public:
    std::uint64_t EAX = 0, EBX = 0, ECX = 0, EDX = 0, ESI = 0, EDI = 0, EBP = 0, ESP = 0, EIP = 0;
    std::uint64_t R8 = 0, R9 = 0, R10 = 0, R11 = 0, R12 = 0, R13 = 0, R14 = 0, R15 = 0;
};

using StringMap = std::map<std::wstring, std::wstring>;
using RawStack = std::map<address_t, address_t>;  // stack slot -> return address
using RawStackMap = std::map<thread_id_t, RawStack>;
using CleanStack = std::vector<StackFrame>;
using CleanStackMap = std::map<thread_id_t, CleanStack>;
using ContextMap = std::map<thread_id_t, Context>;
using ModuleInfoList = std::vector<ModuleInfo>;

}  // namespace norvane_1
