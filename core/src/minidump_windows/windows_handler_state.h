// The Windows state of crash handling: the exception data the filter saved.
// Windows code only.
#pragma once

#include <norvane_1/export.h>
#include <norvane_1/handler_state.h>

#include <windows.h>

#include <cstdint>

namespace norvane_1 {

class NORVANE_API WindowsHandlerState final : public HandlerState {
public:
    WindowsHandlerState() = default;
    ~WindowsHandlerState() override = default;

    bool run() override;
    bool collectSendInfo(bool dumpStack, unsigned long pid, wchar_t const* directory) override {
        return sendOnDemandReport(dumpStack, pid, directory);
    }
    std::wstring collectReport(bool dumpStack, unsigned long pid, wchar_t const* directory,
                               bool forCrashDialog) override {
        return makeOnDemandReport(dumpStack, pid, directory, forCrashDialog);
    }
    bool terminateProduct() override { return terminateThroughTool(); }

    // Copies the record and the context, whole: the originals live on the
    // crashed thread's stack. A chained record is not followed.
    void setExceptionData(EXCEPTION_POINTERS const* pointers);
    virtual void setCrashedProcessId(std::uint32_t processId) { m_crashedProcessId = processId; }
    virtual void setCrashedThreadId(std::uint32_t threadId) { m_crashedThreadId = threadId; }

private:
    EXCEPTION_POINTERS m_exceptionPointers{};
    EXCEPTION_RECORD m_exceptionRecord{};
    CONTEXT m_contextRecord{};  // CONTEXT carries its own 16-byte alignment
    std::uint32_t m_crashedThreadId = 0;
    std::uint32_t m_crashedProcessId = 0;
};

// The report's Exception of saved exception data: the code, its name, and the
// instruction pointer of the context as the address (not ExceptionAddress).
Exception describeException(EXCEPTION_POINTERS const& pointers);

}  // namespace norvane_1
