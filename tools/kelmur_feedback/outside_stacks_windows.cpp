// Stacks of another process on Windows: each thread suspended in turn, its
// context taken, and walked by the debug-help library's stack walker over
// the process's memory. Windows code only.
#include "outside_stacks.h"

#include "context_windows.h"
#include "scoped_handle_windows.h"

#include <windows.h>
#include <dbghelp.h>
#include <tlhelp32.h>

namespace kelmur_feedback {
namespace {

constexpr int kMostFrames = 256;
constexpr DWORD kThreadAccess = THREAD_SUSPEND_RESUME | THREAD_GET_CONTEXT | THREAD_QUERY_INFORMATION;

using norvane_1::ScopedFileHandle;
using norvane_1::ScopedHandle;

// The walker's symbol handler for the process, for as long as it lives.
class SymbolSession {
public:
    // Deferred loads: the walk needs the unwind tables of the modules it
    // passes through, not the debug information of every module.
    explicit SymbolSession(HANDLE process)
        : m_process(process),
          m_ready(
              (::SymSetOptions(::SymGetOptions() | SYMOPT_DEFERRED_LOADS), ::SymInitializeW(process, nullptr, TRUE))) {}
    ~SymbolSession() {
        if (m_ready) ::SymCleanup(m_process);
    }
    SymbolSession(SymbolSession const&) = delete;
    SymbolSession& operator=(SymbolSession const&) = delete;
    bool ready() const { return m_ready != FALSE; }

private:
    HANDLE m_process;
    BOOL m_ready;
};

// A thread held suspended for as long as the object lives.
class SuspendedThread {
public:
    explicit SuspendedThread(HANDLE thread) : m_thread(thread), m_suspended(::SuspendThread(thread) != DWORD(-1)) {}
    ~SuspendedThread() {
        if (m_suspended) ::ResumeThread(m_thread);
    }
    SuspendedThread(SuspendedThread const&) = delete;
    SuspendedThread& operator=(SuspendedThread const&) = delete;
    bool suspended() const { return m_suspended; }

private:
    HANDLE m_thread;
    bool m_suspended;
};

std::vector<DWORD> threadsOf(DWORD processId) {
    std::vector<DWORD> threads;
    ScopedFileHandle const snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    if (!snapshot.valid()) return threads;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Thread32First(snapshot.get(), &entry); more; more = ::Thread32Next(snapshot.get(), &entry)) {
        if (entry.th32OwnerProcessID == processId) threads.push_back(entry.th32ThreadID);
    }
    return threads;
}

norvane_1::CleanStack walk(HANDLE process, HANDLE thread, CONTEXT context) {
    norvane_1::CleanStack frames;
    STACKFRAME64 frame{};
    frame.AddrPC.Offset = context.Rip;
    frame.AddrPC.Mode = AddrModeFlat;
    frame.AddrStack.Offset = context.Rsp;
    frame.AddrStack.Mode = AddrModeFlat;
    frame.AddrFrame.Offset = context.Rbp;
    frame.AddrFrame.Mode = AddrModeFlat;
    for (int depth = 0; depth < kMostFrames; ++depth) {
        if (!::StackWalk64(IMAGE_FILE_MACHINE_AMD64, process, thread, &frame, &context, nullptr,
                           ::SymFunctionTableAccess64, ::SymGetModuleBase64, nullptr) ||
            frame.AddrPC.Offset == 0) {
            break;
        }
        norvane_1::StackFrame found;
        found.address = frame.AddrPC.Offset;
        found.stackAddress = frame.AddrStack.Offset;
        found.kind = 2;
        frames.push_back(found);
    }
    return frames;
}

}  // namespace

OutsideStacks collectThreadStacks(std::uint32_t processId, StartingPoints const& startAt) {
    OutsideStacks result;
    ScopedHandle const process(::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
    if (!process.valid()) {
        result.error = "the process can't be opened (error " + std::to_string(::GetLastError()) + ")";
        return result;
    }
    SymbolSession const symbols(process.get());
    if (!symbols.ready()) {
        result.error = "the debug-help library can't examine the process";
        return result;
    }
    for (DWORD const id : threadsOf(processId)) {
        ScopedHandle const thread(::OpenThread(kThreadAccess, FALSE, id));
        if (!thread.valid()) continue;  // ended meanwhile
        SuspendedThread const held(thread.get());
        CONTEXT context{};
        context.ContextFlags = CONTEXT_FULL;
        if (!held.suspended() || !::GetThreadContext(thread.get(), &context)) {
            result.error = "thread " + std::to_string(id) + ": no context (error " + std::to_string(::GetLastError()) +
                           ")";
            continue;
        }
        auto const given = startAt.find(id);
        if (given != startAt.end()) context = systemContextOf(given->second);
        result.threads.push_back({id, contextOf(context), walk(process.get(), thread.get(), context)});
    }
    return result;
}

}  // namespace kelmur_feedback
