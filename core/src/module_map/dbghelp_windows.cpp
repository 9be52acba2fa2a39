// Windows: the debug-help library, bound at run time.
//
// Its functions are called with the address of the DbgHelpLibs object as
// the process handle: symbol handling is never asked to invade a process,
// so the handle only needs to be a key no other user of the library in
// this process picks.
#include <norvane_1/dbghelp.h>

#include "debug_help_libraries.h"
#include "scoped_handle_windows.h"

#include <gavrel2/shared_lib.h>

#include <windows.h>
#include <dbghelp.h>

#include <cstring>

namespace norvane_1 {

namespace {

using SymInitializeWFunction = BOOL(WINAPI*)(HANDLE, PCWSTR, BOOL);
using SymCleanupFunction = BOOL(WINAPI*)(HANDLE);
using SymSrvGetFileIndexInfoWFunction = BOOL(WINAPI*)(PCWSTR, SYMSRV_INDEX_INFOW*, DWORD);
using MapFileAndCheckSumWFunction = DWORD(WINAPI*)(PWSTR, PDWORD, PDWORD);
using FindFileCallback = BOOL(CALLBACK*)(PCWSTR, PVOID);
using SymFindFileInPathWFunction = BOOL(WINAPI*)(HANDLE, PCWSTR, PCWSTR, PVOID, DWORD, DWORD, DWORD, PWSTR,
                                                 FindFileCallback, PVOID);
using SymSetOptionsFunction = DWORD(WINAPI*)(DWORD);
using RegisteredCallback = BOOL(CALLBACK*)(HANDLE, ULONG, ULONG64, ULONG64);
using SymRegisterCallback64Function = BOOL(WINAPI*)(HANDLE, RegisteredCallback, ULONG64);
using MiniDumpWriteDumpFunction = BOOL(WINAPI*)(HANDLE, DWORD, HANDLE, MINIDUMP_TYPE, PMINIDUMP_EXCEPTION_INFORMATION,
                                                PMINIDUMP_USER_STREAM_INFORMATION, PMINIDUMP_CALLBACK_INFORMATION);

// SYMOPT_DEBUG | SYMOPT_NO_PROMPTS | SYMOPT_FAIL_CRITICAL_ERRORS: the
// library's diagnostics reach the listener, and no lookup may ever wait on a
// dialog, since a crash handler runs unattended.
constexpr DWORD kSymbolOptions = 0x80080200;
constexpr ULONG kDebugTextAction = 0x10000000;  // CBA_DEBUG_INFO
constexpr DWORD kDumpProcessAccess = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | PROCESS_DUP_HANDLE;  // 0x450
constexpr DWORD kIdIsDword = 4;  // SSRVOPT_DWORDPTR
constexpr DWORD kIdIsGuid = 8;   // SSRVOPT_GUIDPTR
constexpr DWORD kPathCapacity = 260;

template <typename Function>
Function symbol(gavrel2::shared_lib_t const& library, wchar_t const* name) {
    return reinterpret_cast<Function>(library.get_symbol(name));
}

BOOL CALLBACK debugTextCallback(HANDLE, ULONG action, ULONG64 data, ULONG64 context) {
    auto* listener = reinterpret_cast<DbgHelpListener*>(static_cast<std::uintptr_t>(context));
    if (action == kDebugTextAction && data != 0 && listener != nullptr) {
        listener->onDebugText(reinterpret_cast<char const*>(static_cast<std::uintptr_t>(data)));
    }
    return FALSE;
}

BOOL CALLBACK acceptNothing(PCWSTR, PVOID) { return FALSE; }

MINIDUMP_TYPE dumpType(int level) {
    switch (level) {
        case 1: return static_cast<MINIDUMP_TYPE>(0);
        case 2: return static_cast<MINIDUMP_TYPE>(0x1044);
        case 3: return static_cast<MINIDUMP_TYPE>(0x1204);
        default: return static_cast<MINIDUMP_TYPE>(0x1826);
    }
}

Guid toGuid(GUID const& from) {
    Guid to;
    to.Data1 = from.Data1;
    to.Data2 = from.Data2;
    to.Data3 = from.Data3;
    for (int i = 0; i < 8; ++i) to.Data4[i] = from.Data4[i];
    return to;
}

GUID toSystemGuid(Guid const& from) {
    GUID to;
    to.Data1 = from.Data1;
    to.Data2 = from.Data2;
    to.Data3 = from.Data3;
    for (int i = 0; i < 8; ++i) to.Data4[i] = from.Data4[i];
    return to;
}

HANDLE createDumpFile(std::wstring const& path) {
    return ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

struct DbgHelpLibs {
    gavrel2::shared_lib_t dbgHelpLib;
    gavrel2::shared_lib_t imageHelpLib;
    SymInitializeWFunction SymInitializeW = nullptr;
    SymCleanupFunction SymCleanup = nullptr;
    SymSrvGetFileIndexInfoWFunction SymSrvGetFileIndexInfoW = nullptr;
    MapFileAndCheckSumWFunction MapFileAndCheckSumW = nullptr;
    SymFindFileInPathWFunction SymFindFileInPathW = nullptr;
    SymSetOptionsFunction SymSetOptions = nullptr;
    SymRegisterCallback64Function SymRegisterCallback64 = nullptr;
    MiniDumpWriteDumpFunction MiniDumpWriteDump = nullptr;
    DbgHelpListener* listener = nullptr;

    // The debug-help library keeps its state for our key after we unload
    // our handle of it, and a later object could get the same address.
    ~DbgHelpLibs() {
        if (SymCleanup) SymCleanup(pseudoProcess());
    }

    HANDLE pseudoProcess() { return static_cast<HANDLE>(this); }

    // All seven or none: a half-bound set would let later calls reach a
    // library that was never set up.
    bool bindDebugHelp() {
        DbgHelpLibs bound;
        gavrel2::shared_lib_t const& lib = dbgHelpLib;
        bound.SymInitializeW = symbol<SymInitializeWFunction>(lib, L"SymInitializeW");
        bound.SymCleanup = symbol<SymCleanupFunction>(lib, L"SymCleanup");
        bound.SymSrvGetFileIndexInfoW = symbol<SymSrvGetFileIndexInfoWFunction>(lib, L"SymSrvGetFileIndexInfoW");
        bound.SymFindFileInPathW = symbol<SymFindFileInPathWFunction>(lib, L"SymFindFileInPathW");
        bound.SymSetOptions = symbol<SymSetOptionsFunction>(lib, L"SymSetOptions");
        bound.SymRegisterCallback64 = symbol<SymRegisterCallback64Function>(lib, L"SymRegisterCallback64");
        bound.MiniDumpWriteDump = symbol<MiniDumpWriteDumpFunction>(lib, L"MiniDumpWriteDump");
        if (!bound.SymInitializeW || !bound.SymCleanup || !bound.SymSrvGetFileIndexInfoW || !bound.SymFindFileInPathW ||
            !bound.SymSetOptions || !bound.SymRegisterCallback64 || !bound.MiniDumpWriteDump) {
            return false;
        }
        adoptDebugHelp(bound);
        return true;
    }

    void adoptDebugHelp(DbgHelpLibs const& bound) {
        SymInitializeW = bound.SymInitializeW;
        SymCleanup = bound.SymCleanup;
        SymSrvGetFileIndexInfoW = bound.SymSrvGetFileIndexInfoW;
        SymFindFileInPathW = bound.SymFindFileInPathW;
        SymSetOptions = bound.SymSetOptions;
        SymRegisterCallback64 = bound.SymRegisterCallback64;
        MiniDumpWriteDump = bound.MiniDumpWriteDump;
    }

    void releaseDebugHelp() {
        adoptDebugHelp(DbgHelpLibs());
        dbgHelpLib.uninitialize();
    }
};

void holdDebugHelpLibraries() {
    static bool const held = [] {
        HMODULE const help = ::LoadLibraryW(L"kelmur_dbghelp.dll");
        // Its exports forward to the system's library: resolving one loads it.
        if (help != nullptr) static_cast<void>(::GetProcAddress(help, "SymInitializeW"));
        static_cast<void>(::LoadLibraryW(L"imagehlp.dll"));
        return true;
    }();
    static_cast<void>(held);
}

DbgHelp::DbgHelp() : m_libs(new DbgHelpLibs) {}

DbgHelp::~DbgHelp() = default;

bool DbgHelp::initialize(DbgHelpListener* listener) {
    DbgHelpLibs& libs = *m_libs;
    libs.listener = listener;
    if (!libs.dbgHelpLib.initialize(L"kelmur_dbghelp", gavrel2::path_t())) return m_initialized;
    if (!libs.bindDebugHelp()) return m_initialized;
    if (!libs.SymInitializeW(libs.pseudoProcess(), nullptr, FALSE)) return m_initialized;
    libs.SymSetOptions(kSymbolOptions);
    libs.SymRegisterCallback64(libs.pseudoProcess(), debugTextCallback,
                               static_cast<ULONG64>(reinterpret_cast<std::uintptr_t>(listener)));
    // Check sums are a nicety: without imagehlp they are just 0.
    if (libs.imageHelpLib.initialize(L"imagehlp", gavrel2::path_t())) {
        libs.MapFileAndCheckSumW = symbol<MapFileAndCheckSumWFunction>(libs.imageHelpLib, L"MapFileAndCheckSumW");
    }
    m_initialized = true;
    return true;
}

bool DbgHelp::isInitialized() const { return m_initialized; }

bool DbgHelp::uninitialize() {
    if (m_libs->SymCleanup) m_libs->SymCleanup(m_libs->pseudoProcess());
    m_libs->releaseDebugHelp();
    return true;
}

bool DbgHelp::getFileIndexInfo(std::wstring const& path, DbgHelpFileInfo& info) {
    if (!m_libs->SymSrvGetFileIndexInfoW) return false;
    SYMSRV_INDEX_INFOW index;
    std::memset(&index, 0, sizeof index);
    index.sizeofstruct = sizeof index;
    // A file it can't read leaves the record zeroed, which is the answer.
    m_libs->SymSrvGetFileIndexInfoW(path.c_str(), &index, 0);
    info.timestamp = index.timestamp;
    info.size = index.size;
    info.age = index.age;
    info.guid = toGuid(index.guid);
    index.pdbfile[MAX_PATH] = L'\0';
    info.debugFile = index.pdbfile;
    return true;
}

std::uint32_t DbgHelp::getFileCheckSum(std::wstring const& path) {
    if (!m_libs->MapFileAndCheckSumW) return 0;
    std::wstring writable = path;
    DWORD headerSum = 0;
    DWORD checkSum = 0;
    m_libs->MapFileAndCheckSumW(&writable[0], &headerSum, &checkSum);
    return checkSum;
}

std::wstring DbgHelp::findFile(int mode, std::wstring const& path, DbgHelpFileInfo const& info) {
    if (!m_libs->SymFindFileInPathW || (mode != 0 && mode != 1)) return std::wstring();
    DWORD timestamp = static_cast<DWORD>(info.timestamp);
    GUID guid = toSystemGuid(info.guid);
    bool const byImage = mode == 0;
    std::wstring const& name = byImage ? path : info.debugFile;
    PVOID id = byImage ? static_cast<PVOID>(&timestamp) : static_cast<PVOID>(&guid);
    DWORD const second = static_cast<DWORD>(byImage ? info.size : info.age);
    wchar_t found[kPathCapacity] = {};
    BOOL const ok = m_libs->SymFindFileInPathW(m_libs->pseudoProcess(), nullptr, name.c_str(), id, second, 0,
                                               byImage ? kIdIsDword : kIdIsGuid, found, acceptNothing, nullptr);
    found[kPathCapacity - 1] = L'\0';
    return ok ? std::wstring(found) : std::wstring();
}

void DbgHelp::writeProcessDump(std::wstring const& path, unsigned long processId, int level) {
    ScopedHandle const process(::OpenProcess(kDumpProcessAccess, FALSE, processId));
    if (!process.valid()) return;
    ScopedFileHandle const file(createDumpFile(path));
    if (file.valid() && m_libs->MiniDumpWriteDump) {
        m_libs->MiniDumpWriteDump(process.get(), processId, file.get(), dumpType(level), nullptr, nullptr, nullptr);
    }
}

void DbgHelp::writeOwnDump(std::wstring const& path, ::_MINIDUMP_EXCEPTION_INFORMATION* exceptionInfo) {
    ScopedFileHandle const file(createDumpFile(path));
    if (!file.valid() || !m_libs->MiniDumpWriteDump) return;
    m_libs->MiniDumpWriteDump(::GetCurrentProcess(), ::GetCurrentProcessId(), file.get(), static_cast<MINIDUMP_TYPE>(0),
                              exceptionInfo, nullptr, nullptr);
}

}  // namespace norvane_1
