// The export of a crash's report to "crash_info.txt", on the worker thread.
// Portable code only.
#include <norvane_1/crash_handling.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/string_traits.h>

#include "crash_work.h"
#include "exception_names.h"
#include "minidump_problem_report_storage/custom_section_list.h"
#include "minidump_problem_report_storage/log_directory.h"
#include "os_layer/text_files.h"
#include "uncaught_exception.h"

#include <gavrel2/environment.h>
#include <gavrel2/path.h>
#include <vantix_2_18/utf.h>

#include <boost/thread/mutex.hpp>

#include <chrono>
#include <thread>

namespace norvane_1 {
namespace {

constexpr char kExportLabel[] = "norvane_1::HandlerState::exportCrashInfo";

void record(std::wstring const& text) { addCreationLogRecord(kExportLabel, text, nullptr); }

// A crash on a thread that held the property mutex must not stop the
// export: it waits about a second for the mutex, then goes on without.
bool lockWithPatience(boost::mutex& mutex) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        if (mutex.try_lock()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

// Beside an ABORT_CALL that an uncaught C++ exception led to, its type and
// what() in a section of their own:
//   [UncaughtException]
//   Type: std::runtime_error
//   What: no&nbsp;one&nbsp;catches&nbsp;this
void addUncaughtException(ProblemReportStorage& report, Exception const& exception) {
    std::wstring type;
    std::wstring what;
    if (exception.code != kAbortExceptionCode || !internal::takeUncaughtException(type, what)) return;
    StringMap const keys{{L"Type", string_traits::encodeString(type)}, {L"What", string_traits::encodeString(what)}};
    report.setSection(L"UncaughtException", processMapToSection(keys));
}

// The directory whose custom-section list the worker has put the creation
// log into.
std::wstring g_creationLogListedIn;

void writeReport(std::wstring const& path, std::string const& utf8Text) {
    std::ofstream out;
    os_layer::openTextFile(out, path, std::ios::out | std::ios::trunc);
    if (!out) return;
    out << utf8Text << std::endl;
}

}  // namespace

void listCreationLog(std::wstring const& directory) {
    if (directory.empty() || !gavrel2::get_environ_value(L"NORVANE1_NO_CREATION_LOG").empty()) return;
    if (directory == g_creationLogListedIn && gavrel2::path_t::exists(directory + internal::kCustomSectionListName))
        return;
    addCrashReportCustomSection(L"CreationLog", directory + L"norvane_creation_log.txt", nullptr);
    g_creationLogListedIn = directory;
}

bool HandlerState::initInfoPaths() {
    std::wstring const directory = logDirectory();
    if (directory.empty()) return false;
    m_dumpInfo.logDirectory = directory;
    m_dumpInfo.crashInfoPath = directory + L"crash_info.txt";
    m_dumpInfo.systemInfoPath = directory + L"system_info.txt";
    m_dumpInfo.stackProcessId = 0;
    m_dumpInfo.crashedThreadId = 0;
    m_dumpInfo.moduleMapProcessId = 0;
    m_storage.setReportPath(directory);
    // Done at the worker's start already, unless the directory or the list
    // is new since then.
    listCreationLog(directory);
    return true;
}

bool HandlerState::exportCrashInfo(DumpInfo const& info) {
    m_storage.setException(info.exception);
    m_storage.setCrashedTid(info.crashedThreadId);
    m_storage.setCrashedPid(info.stackProcessId + info.moduleMapProcessId);
    record(L"Set exception info, thread ID, pid");
    addUncaughtException(m_storage, info.exception);

    m_storage.addContext(m_context, info.crashedThreadId);
    record(L"Set thread context");

    m_storage.setDumpValue(L"Path", info.dumpPath);
    record(L"Set crash dump info");

    m_storage.addPremortalLog(getPremortalWords(nullptr));
    record(L"Added premortal log");

    if (lockWithPatience(*m_propertyMutex)) {
        m_storage.setAppPropertyPool(m_appProperties);
        m_propertyMutex->unlock();
        record(L"Added app property pool");
    } else {
        record(L"App property pool is locked, left out");
    }

    m_storage.setFailedProductName(m_storage.detectProductInfo());
    record(L"Set failed product info: " + m_storage.getFailedProductName());

    addCreationLogRecord("minidump", L"invoke out-of-proc handling...", nullptr);
    writeReport(info.crashInfoPath, VANTIX_2_18::utf::to_utf8(m_storage.toString()));
    return true;
}

bool HandlerState::storeCrashInfo() { return true; }

}  // namespace norvane_1
