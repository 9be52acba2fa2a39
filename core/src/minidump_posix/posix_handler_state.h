// The Linux state of crash handling: what the signal handler saved of a
// crash. POSIX code only.
#pragma once

#include <norvane_1/exception_data.h>
#include <norvane_1/handler_state.h>

#include <signal.h>

#include <cstdint>

namespace norvane_1 {

class PosixHandlerState final : public HandlerState {
public:
    PosixHandlerState() = default;
    ~PosixHandlerState() override = default;

    bool run() override;
    bool collectSendInfo(bool dumpStack, unsigned long pid, wchar_t const* directory) override {
        return sendOnDemandReport(dumpStack, pid, directory);
    }
    std::wstring collectReport(bool dumpStack, unsigned long pid, wchar_t const* directory,
                               bool forCrashDialog) override {
        return makeOnDemandReport(dumpStack, pid, directory, forCrashDialog);
    }
    bool terminateProduct() override { return terminateThroughTool(); }

    // Copies the signal's number, its siginfo and the registers of its
    // context: the originals live on the crashed thread's stack.
    void setExceptionData(ExceptionData const* data);
    void setCrashedProcessId(std::uint32_t processId) { m_crashedProcessId = processId; }
    void setCrashedThreadId(std::uint32_t threadId) { m_crashedThreadId = threadId; }

private:
    int m_signalNumber = 0;
    siginfo_t m_signalInfo{};
    bool m_hasSignalInfo = false;
    Context m_registers;
    std::uint32_t m_crashedThreadId = 0;
    std::uint32_t m_crashedProcessId = 0;
};

}  // namespace norvane_1
