// The process-wide state of crash handling and its worker thread.
//
// HandlerState holds what a crash needs before it comes: the report under
// construction, the record handed to the handler process, the application
// properties, and a worker thread that waits from the install step on. The
// crashed thread only fills the state, wakes the worker and sleeps until the
// worker has finished; the work proper runs on the worker. The class is
// abstract: each platform fills run() in its own subclass, which
// createHandlerState() makes.
//
// The Boost synchronisation objects are held by pointer, so that this header
// needs no Boost headers; include <boost/thread.hpp> to use what getMutex(),
// getLock() and getCondition() return.
#pragma once

#include <norvane_1/export.h>
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/report_records.h>

#include <gavrel2/variant.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace boost {
class mutex;
class thread;
class condition_variable_any;
template <typename Mutex>
class unique_lock;
}  // namespace boost

namespace norvane_1 {

struct MinidumpModuleMap;
class CrashStages;

// The facts of one crash, from the worker thread to the ExceptionHandler.
struct DumpInfo {
    Exception exception;
    std::wstring crashInfoPath;        // "crash_info.txt" in the log directory
    std::wstring systemInfoPath;       // "system_info.txt" in the log directory
    std::wstring dumpPath;             // "crash.dmp" in the log directory, or empty
    std::uint32_t stackProcessId = 0;  // 0 when the report already holds the stack
    std::uint32_t crashedThreadId = 0;
    std::wstring logDirectory;
    std::int32_t dumpMemory = 0;
    std::uint32_t moduleMapProcessId = 0;
};

class NORVANE_API HandlerState {
public:
    using AppProperties = std::map<std::wstring, gavrel2::variant_t>;
    using ShutdownCallback = bool (*)();

    virtual ~HandlerState();
    HandlerState(HandlerState const&) = delete;
    HandlerState& operator=(HandlerState const&) = delete;

    // The singleton, made by createHandlerState() on first use. No lock: the
    // first call must not race with another.
    static HandlerState* get();
    static bool isNull();

    // Starts the worker thread; false if it runs already.
    bool init();
    // Ends the worker thread (waiting at most 5 seconds) and destroys the
    // singleton. Call it on the object get() gave; it is gone afterwards.
    void release();
    // The body of the worker thread.
    void operator()();
    bool isInitialized() const;

    // The crash hand-over, as the crashed thread sees it; each call takes a
    // lock of its own on the worker mutex. handOverCrash runs `prepare` under
    // the mutex, sets both flags and wakes the worker; awaitWorker sleeps,
    // with no time limit, until the worker has ended and gives its exit code.
    void handOverCrash(std::function<void()> const& prepare);
    int awaitWorker();
    // Where the process stands with a crash (crash_stages.h): the one state
    // that the crashed thread, later faults, install and remove share.
    static CrashStages& crashStages();

    // The hand-over flags; the caller holds the worker mutex.
    void setRunStatus(bool run);
    bool getRunStatus() const;
    void setExitStatus(bool exit);
    bool getExitStatus() const;
    int getExitCode() const;
    void join();

    boost::mutex& getMutex();
    boost::unique_lock<boost::mutex>& getLock();
    boost::condition_variable_any& getCondition();
    DumpInfo& getDumpInfo();

    // An empty value removes the property.
    void addAppProperty(std::wstring const& key, gavrel2::variant_t const& value);
    AppProperties getAppPropertyMap() const;
    void setProblemReportStorage(ProblemReportStorage const& storage);
    ProblemReportStorage getProblemReportStorage() const;
    void setGFGSutdownCallback(ShutdownCallback callback);
    // Calls the shutdown callback; false if none is set.
    bool useGFGCallback();

    // Writes the report to DumpInfo::crashInfoPath. Always true.
    bool exportCrashInfo(DumpInfo const& info);

    // The in-process collection, on the worker (collect mode 1) or on the
    // task service's thread (the fallback): this process's modules, the
    // crashed thread's stack read while that thread waits, the exception's
    // module and the product facts, into the report. False when the module
    // map or the stack can't be had; what was found stays in the report.
    bool inProcessStackCollect(DumpInfo& info);
    // On the handler process's request: reads "crash_info.txt" back and,
    // when it lacks the crashed thread's stack, collects it and writes the
    // file anew. A file with that stack is left alone.
    void fallbackInProcess(DumpInfo& info);
    // A module record for each entry of the map (see addModuleInfo).
    void storeModuleInfo(MinidumpModuleMap* map, bool skipKnown);

    // The crash work of the worker thread.
    virtual bool run() = 0;
    // On-demand reports and the end of the product (see crash_handling.h);
    // they run on the caller's thread and leave the worker alone.
    virtual bool collectSendInfo(bool dumpStack, unsigned long pid, wchar_t const* directory) = 0;
    virtual std::wstring collectReport(bool dumpStack, unsigned long pid, wchar_t const* directory,
                                       bool forCrashDialog) = 0;
    virtual bool terminateProduct() = 0;

protected:
    HandlerState();

    // What a platform's run() reads out of the exception data it saved.
    struct SavedCrash {
        std::uint32_t processId = 0;
        std::uint32_t threadId = 0;
        Exception exception;  // code, description and instruction pointer
        Context registers;
    };
    // The crash work of run(), the same on every platform: fills DumpInfo
    // and m_context, exports the report and runs the handler. `runLabel`
    // names the platform's run() in the creation log.
    bool processSavedCrash(SavedCrash const& crash, char const* runLabel);

    // What the platforms' on-demand operations share.
    std::wstring makeOnDemandReport(bool dumpStack, unsigned long pid, wchar_t const* directory, bool forCrashDialog);
    bool sendOnDemandReport(bool dumpStack, unsigned long pid, wchar_t const* directory);
    bool terminateThroughTool();

    void setExitCode(int code);
    // Sets the paths of the hand-over files from the log directory; false
    // if the log directory can't be told.
    bool initInfoPaths();
    bool storeCrashInfo();
    // The first 100 lines of the newest ".log" file of `directory` (null:
    // the log directory).
    std::vector<std::wstring> getPremortalWords(wchar_t const* directory);

    Context m_context;
    std::int32_t m_collectMode = 0;  // 1: the stack is collected in-process before the export
    DumpInfo m_dumpInfo;
    ProblemReportStorage m_storage;

private:
    std::unique_ptr<boost::mutex> m_propertyMutex;
    AppProperties m_appProperties;
    bool m_initialized = false;
    std::unique_ptr<boost::mutex>
        m_mutex;  // the worker's start, and the report while the worker or the task service makes it
    std::unique_ptr<boost::mutex> m_workerMutex;
    std::unique_ptr<boost::unique_lock<boost::mutex>> m_lock;
    std::unique_ptr<boost::condition_variable_any> m_condition;
    std::unique_ptr<boost::thread> m_thread;
    bool m_exitStatus = false;
    bool m_runStatus = false;
    int m_exitCode = -1;
    ShutdownCallback m_shutdownCallback = nullptr;

    static std::unique_ptr<HandlerState> m_handler;
};

}  // namespace norvane_1
