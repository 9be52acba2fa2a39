// The crash work of the worker thread, after the platform's run() has read
// its saved exception data. Portable code only.
#include <norvane_1/crash_handling.h>
#include <norvane_1/exception_handler.h>
#include <norvane_1/handler_state.h>

#include "crash_work.h"
#include "logging/logging.h"
#include "minidump_problem_report_storage/log_directory.h"
#include "process_globals.h"
#include "task_service.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <ios>

namespace norvane_1 {

int runCrashHandler(DumpInfo const& info) {
    ExceptionHandler* handler = g_exceptionHandler;
    return handler == nullptr ? -1 : handler->handleCrash(info);
}

bool HandlerState::processSavedCrash(SavedCrash const& crash, char const* runLabel) {
    auto& logger = log::platformLogger();
    NORVANE_LOG_INFO(logger, L"Worker thread took over...");
    addCreationLogRecord(runLabel, L"Worker thread took over...", nullptr);

    // The report's data is shared with the task service's thread, which
    // may collect the stack into it once the handler process asks: the
    // state's mutex is held while it is made here, and the handler gets a
    // copy of what it needs.
    DumpInfo handed;
    {
        boost::lock_guard<boost::mutex> guard(getMutex());
        m_dumpInfo.stackProcessId = crash.processId;
        m_dumpInfo.crashedThreadId = crash.threadId;
        m_dumpInfo.dumpMemory = 1;
        m_dumpInfo.exception = crash.exception;
        NORVANE_LOG_INFO(logger, L"Exception data: pid: "
                                     << crash.processId << L"; tid: " << crash.threadId << L"; exception address: 0x"
                                     << std::hex << crash.exception.address << L"; exception code: 0x"
                                     << crash.exception.code << std::dec << L"; exception description: "
                                     << crash.exception.description << L"; exception module: "
                                     << crash.exception.module);

        std::wstring const directory = logDirectory();
        m_dumpInfo.dumpPath = directory.empty() ? std::wstring() : directory + L"crash.dmp";
        m_context = crash.registers;

        if (m_collectMode == 1) {
            NORVANE_LOG_INFO(logger, L"Performing in-proc stack collect...");
            inProcessStackCollect(m_dumpInfo);
        }
        NORVANE_LOG_INFO(logger, L"Exporting crash info...");
        exportCrashInfo(m_dumpInfo);
        if (m_collectMode == 1) m_dumpInfo.stackProcessId = 0;
        handed = m_dumpInfo;
    }

    NORVANE_LOG_INFO(logger, L"Performing further out-of-proc handling...");
    // The handler process may call back at once: the service must listen.
    internal::awaitTaskServiceEndpoint();
    setExitCode(runCrashHandler(handed));
    NORVANE_LOG_INFO(logger, L"Worker thread finished");
    return true;
}

}  // namespace norvane_1
