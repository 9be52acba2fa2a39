// Windows code only.
#include "host_platform.h"

#include <norvane_1/norvane.h>

#include <windows.h>
#include <tlhelp32.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace crash_host {
namespace {

LONG WINAPI hostFilter(EXCEPTION_POINTERS*) {
    std::printf("crash_host: the host's own exception filter ran\n");
    std::fflush(stdout);
    ::ExitProcess(kHostFilterExitCode);
}

}  // namespace

// main() gets its arguments in the ANSI code page.
std::wstring wideArgument(char const* argument) {
    int const size = ::MultiByteToWideChar(CP_ACP, 0, argument, -1, nullptr, 0);
    if (size <= 1) return std::wstring();
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, argument, -1, &wide[0], size);
    wide.resize(static_cast<std::size_t>(size - 1));
    return wide;
}

namespace {

void handOver(CONTEXT& context) {
    EXCEPTION_RECORD record;
    std::memset(&record, 0, sizeof record);
    record.ExceptionCode = EXCEPTION_BREAKPOINT;
    record.ExceptionAddress = reinterpret_cast<PVOID>(context.Rip);
    std::printf("crash_host: captured instruction pointer 0x%016" PRIx64 "\n", static_cast<std::uint64_t>(context.Rip));
    std::fflush(stdout);
    EXCEPTION_POINTERS pointers{&record, &context};
    norvane_1::runExceptionHandler(&pointers);
}

}  // namespace

void runOwnExceptionHandler() {
    CONTEXT context;
    std::memset(&context, 0, sizeof context);
    ::RtlCaptureContext(&context);
    handOver(context);
}

void runOwnExceptionHandlerOn(std::uint64_t stackPointer, std::uint64_t framePointer) {
    CONTEXT context;
    std::memset(&context, 0, sizeof context);
    ::RtlCaptureContext(&context);
    context.Rsp = stackPointer;
    context.Rbp = framePointer;
    handOver(context);
}

void replaceCrashFilter() { ::SetUnhandledExceptionFilter(hostFilter); }

// A snapshot lists the threads of every process; only ours count.
std::size_t countThreads() {
    HANDLE const snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return 0;
    DWORD const self = ::GetCurrentProcessId();
    std::size_t count = 0;
    THREADENTRY32 entry;
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Thread32First(snapshot, &entry); more; more = ::Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == self) ++count;
    }
    ::CloseHandle(snapshot);
    return count;
}

void ignoreChildProcessEnds() {}

void setEnvironmentVariable(char const* name, char const* value) { ::SetEnvironmentVariableA(name, value); }

// A thread takes a lock and keeps it; the host's shutdown callback, which
// the crashed thread runs before the hand-over, waits for that lock. (The
// heap's lock can't serve: the system's own exception dispatch waits for
// it under Wine, before any filter runs.)
void holdUpTheNextCrash(std::string const&) {
    static HANDLE const held = ::CreateMutexW(nullptr, FALSE, nullptr);
    HANDLE const taken = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE const thread = ::CreateThread(
        nullptr, 0,
        [](LPVOID event) -> DWORD {
            ::WaitForSingleObject(held, INFINITE);
            ::SetEvent(static_cast<HANDLE>(event));
            ::Sleep(INFINITE);
            return 0;
        },
        taken, 0, nullptr);
    if (thread == nullptr) std::abort();
    ::WaitForSingleObject(taken, INFINITE);
    norvane_1::setGFGSutdownCallback([] {
        ::WaitForSingleObject(held, INFINITE);
        return true;
    });
}

}  // namespace crash_host
