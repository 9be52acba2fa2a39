// The minidump of the crashed process, by the debug-help library, from
// outside: its threads with their stacks, its modules, and the crashed
// thread's exception with the registers of the fault. Windows code only.
#include "crash_dump.h"

#include "context_windows.h"
#include "scoped_handle_windows.h"

#include <windows.h>
#include <dbghelp.h>

namespace kelmur_feedback {
namespace {

std::string failure(char const* what) {
    return std::string(what) + " (error " + std::to_string(::GetLastError()) + ")";
}

// The crashed thread parks inside the library: the exception's record and
// registers come from the report, as the fault left them, and are read from
// this process (ClientPointers FALSE).
struct FaultPointers {
    explicit FaultPointers(DumpRequest const& request) : context(systemContextOf(request.context)) {
        record.ExceptionCode = static_cast<DWORD>(request.exception.code);
        record.ExceptionAddress = reinterpret_cast<PVOID>(request.exception.address);
        pointers.ExceptionRecord = &record;
        pointers.ContextRecord = &context;
        information.ThreadId = request.threadId;
        information.ExceptionPointers = &pointers;
        information.ClientPointers = FALSE;
    }
    EXCEPTION_RECORD record{};
    CONTEXT context;
    EXCEPTION_POINTERS pointers{};
    MINIDUMP_EXCEPTION_INFORMATION information{};
};

MINIDUMP_TYPE dumpTypeOf(std::uint32_t dumpMemory) {
    return static_cast<MINIDUMP_TYPE>(MiniDumpNormal | (dumpMemory > 0 ? MiniDumpWithIndirectlyReferencedMemory : 0));
}

}  // namespace

std::string writeCrashDump(DumpRequest const& request) {
    if (request.path.empty()) return "the report names no dump file";
    norvane_1::ScopedHandle const process(
        ::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, request.processId));
    if (!process.valid()) return failure("the process can't be opened");
    norvane_1::ScopedFileHandle file(
        ::CreateFileW(request.path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.valid()) return failure("the dump file can't be created");
    FaultPointers fault(request);
    bool const written = ::MiniDumpWriteDump(process.get(), request.processId, file.get(),
                                             dumpTypeOf(request.dumpMemory),
                                             request.threadId != 0 ? &fault.information : nullptr, nullptr, nullptr);
    if (written) return std::string();
    std::string const why = failure("the debug-help library could not write the dump");
    file.reset();  // closed before it is deleted
    ::DeleteFileW(request.path.c_str());
    return why;
}

}  // namespace kelmur_feedback
