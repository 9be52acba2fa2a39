// The task service's server: its thread, and starting and stopping it.
// Portable code only; task_channel.h is the platform's part.
//
// States of the service, and what moves it
// ----------------------------------------
//   Stopped    no service (g_emtTask empty).
//              start -> Listening, once the first endpoint is made (start
//              waits for that, at most a second; the crash's start leaves
//              the wait for later, until its handler process starts).
//              stop -> records "already stopped", stays.
//   Listening  the thread waits for a client at an endpoint.
//              a client connects -> Serving, and the next endpoint is made at
//              once, so that a second client finds one while this one is
//              served. Connecting fails -> record, next pass.
//   Serving    one client, one request, one reply.
//              no request within kRequestPatience (a client that connects
//              and sends nothing), the client gone, or a failed read:
//                         record "Could not read", close -> Listening.
//              fewer than 4 bytes: no code -> "FAIL" -> Listening.
//              code 1     fallbackInProcess, then "PASS" (also if the
//                         collection found nothing, or threw: then "FAIL"),
//                         -> Listening.
//              code 2     record, close, the thread ends -> Ending.
//              any other  "FAIL" -> Listening.
//              A reply that can't be written is recorded; the client is
//              closed once it has taken the reply and hung up, or after
//              kReplyPatience -> Listening.
//   Ending     m_stop set and code 2 on its way (stop), or code 2 received:
//              the thread returns -> Stopped once stop has joined it.
// Failures cost one pass of the loop and never end the service: an endpoint
// that can't be made is tried again after a pause, until m_stop is set.
// Bytes of a request beyond its 2064 are read and dropped before closing.
#include <norvane_1/crash_handling.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/minidump_task.h>

#include "logging/logging.h"
#include "platform.h"
#include "process_globals.h"
#include "task_channel.h"
#include "task_messages.h"
#include "task_service.h"

#include <gavrel2/smart_pointer.h>

#include <boost/thread.hpp>

#include <atomic>
#include <cstring>
#include <exception>
#include <future>
#include <thread>

namespace norvane_1 {
namespace {

constexpr char kServerLabel[] = "norvane_1::ExecuteMinidumpTaskThread::operator()";
constexpr char kStartLabel[] = "norvane_1::startExecuteMinidumpTaskthread";
constexpr char kStopLabel[] = "norvane_1::stopExecuteMinidumpTaskThread";

// A client that connects and sends nothing would otherwise hold the service
// (and the crashed process, whose stop waits for it) for ever.
constexpr std::chrono::milliseconds kRequestPatience{3000};
constexpr std::chrono::milliseconds kReplyPatience{3000};
constexpr std::chrono::milliseconds kPauseAfterFailure{100};
constexpr std::chrono::milliseconds kFirstEndpointWait{1000};
// The stop message goes by the pipe's name; where another process's service
// answers to the same name (Windows names the pipe for the whole machine),
// ours never hears it. Its thread is then left behind rather than waited for
// without end.
constexpr long kStopJoinMilliseconds = 5000;

void record(char const* label, std::wstring const& text) { addCreationLogRecord(label, text, nullptr); }

void logAndRecord(std::wstring const& logLine, std::wstring const& text) {
    NORVANE_LOG_INFO(log::internalLogger(), logLine);
    record(kServerLabel, text);
}

}  // namespace

class ExecuteMinidumpTaskThread {
public:
    void operator()();

    std::atomic<std::uint8_t> m_stop{0};
    // Kept when the first endpoint has been made, or couldn't be: a client
    // right after the start finds the service.
    std::promise<void> m_firstEndpoint;

private:
    enum class Served { client, terminate };

    bool createEndpoint(task_channel::Server& server);
    Served serve(task_channel::Connection& client);
    task::Reply runFallback();
};

namespace {

// What the service's thread runs: the task, shared with the start and stop.
class CallableWrap {
public:
    explicit CallableWrap(gavrel2::smart_pointer_t<ExecuteMinidumpTaskThread> task) : m_task(std::move(task)) {}
    void operator()() {
        if (m_task) (*m_task)();  // m_ptr != 0: start never wraps an empty one
    }

private:
    gavrel2::smart_pointer_t<ExecuteMinidumpTaskThread> m_task;
};

gavrel2::smart_pointer_t<ExecuteMinidumpTaskThread> g_emtTask;
gavrel2::smart_pointer_t<boost::thread> g_emtThread;
// Ready when the first endpoint of the running service is made or couldn't be.
std::shared_future<void> g_emtFirstEndpoint;

void detachAndDelete(boost::thread* thread) {
    if (thread->joinable()) thread->detach();
    delete thread;
}

}  // namespace

void ExecuteMinidumpTaskThread::operator()() {
    // While this thread runs, a fault on it is passed on, not held (the
    // crash waits for it); its id may go to another thread afterwards.
    g_serviceThreadId = platform::currentThreadId();
    struct Forget {
        ~Forget() { g_serviceThreadId = 0; }
    } const forget;
    std::unique_ptr<task_channel::Server> const server = task_channel::makeServer();
    bool ready = createEndpoint(*server);
    m_firstEndpoint.set_value();
    while (!m_stop) {
        // 1.-3. The endpoint, unless the last client's connection made it.
        if (!ready && !createEndpoint(*server)) {
            std::this_thread::sleep_for(kPauseAfterFailure);
            continue;
        }
        // 4. Wait for a client.
        NORVANE_LOG_INFO(log::internalLogger(), L"ExecuteMinidumpTaskThread: Try 2 connect to THE PIPE");
        std::unique_ptr<task_channel::Connection> client = server->connect();
        ready = false;
        if (!client) {
            logAndRecord(L"ExecuteMinidumpTaskThread: connect failed!", L"Could not connect to THE PIPE");
            continue;
        }
        // The next client finds an endpoint while this one is served.
        ready = createEndpoint(*server);
        // 5.-11.
        if (serve(*client) == Served::terminate) return;
    }
    // 13.
    logAndRecord(L"ExecuteMinidumpTaskThread: FINISHED!", L"I FINISHED!");
}

bool ExecuteMinidumpTaskThread::createEndpoint(task_channel::Server& server) {
    NORVANE_LOG_INFO(log::internalLogger(), L"ExecuteMinidumpTaskThread: create THE PIPE");
    record(kServerLabel, L"Create THE PIPE");
    if (!server.create()) {
        logAndRecord(L"ExecuteMinidumpTaskThread: Could not create THE PIPE", L"Could not create THE PIPE");
        return false;
    }
    record(kServerLabel, L"THE PIPE created");
    return true;
}

ExecuteMinidumpTaskThread::Served ExecuteMinidumpTaskThread::serve(task_channel::Connection& client) {
    // 5. One read; the rest of a short request is not waited for.
    task::Request request;
    std::size_t const got = client.read(&request, sizeof request, kRequestPatience);
    if (got == 0) {
        logAndRecord(L"ExecuteMinidumpTaskThread: Cannot read from THE PIPE", L"Could not read from THE PIPE");
        return Served::client;
    }
    // 6. Fewer bytes than a code has are no task.
    std::uint32_t const code = got >= sizeof request.code ? request.code : 0;
    NORVANE_LOG_INFO(log::internalLogger(), L"ExecuteMinidumpTaskThread: taskcode=" << code);

    // 7. The end of the service: no reply.
    if (code == terminateService) {
        record(kServerLabel, L"Got minidump task <terminateService>");
        logAndRecord(L"ExecuteMinidumpTaskThread: TERMINATED!", L"Service TERMINATED!");
        return Served::terminate;
    }
    // 8.-9.
    task::Reply reply = task::replyOf(task::kFail);
    if (code == fallbackInProc) {
        record(kServerLabel, L"Got minidump task <fallbackInProc>");
        reply = runFallback();
        record(kServerLabel, L"<fallbackInProc> executed");
    }
    std::wstring const verdict(reply.verdict, reply.verdict + sizeof reply.verdict);
    logAndRecord(L"ExecuteMinidumpTaskThread: replied <" + verdict + L"> to THE_PIPE_SC",
                 L"Replied <" + verdict + L"> to THE_PIPE_SC");
    // 10.
    if (!client.write(&reply, sizeof reply)) {
        logAndRecord(L"ExecuteMinidumpTaskThread: Cannot write to THE PIPE", L"Cannot write to THE PIPE");
        return Served::client;
    }
    // 11. The reply reaches the client before the connection closes.
    client.flush(kReplyPatience);
    return Served::client;
}

// A report the handler process left damaged must not end the crashed
// process from this thread: the collection's failure is the client's "FAIL".
task::Reply ExecuteMinidumpTaskThread::runFallback() {
    HandlerState* state = HandlerState::get();
    if (state == nullptr) return task::replyOf(task::kFail);
    try {
        state->fallbackInProcess(state->getDumpInfo());
    } catch (std::exception const& error) {
        record(kServerLabel,
               L"<fallbackInProc> failed: " + std::wstring(error.what(), error.what() + std::strlen(error.what())));
        return task::replyOf(task::kFail);
    }
    return task::replyOf(task::kPass);
}

namespace internal {

void startTaskServiceUnawaited() {
    if (g_emtTask) {
        record(kStartLabel, L"EMT Service is already started");
        return;
    }
    g_emtTask = gavrel2::smart_pointer_t<ExecuteMinidumpTaskThread>(new ExecuteMinidumpTaskThread());
    g_emtFirstEndpoint = g_emtTask->m_firstEndpoint.get_future().share();
    g_emtThread = gavrel2::smart_pointer_t<boost::thread>(new boost::thread(CallableWrap(g_emtTask)), detachAndDelete);
    NORVANE_LOG_INFO(log::internalLogger(), L"EMT Service started!");
    record(kStartLabel, L"EMT Service started!");
}

void awaitTaskServiceEndpoint() {
    if (g_emtFirstEndpoint.valid()) g_emtFirstEndpoint.wait_for(kFirstEndpointWait);
}

}  // namespace internal

void startExecuteMinidumpTaskthread() {
    internal::startTaskServiceUnawaited();
    internal::awaitTaskServiceEndpoint();
}

void stopExecuteMinidumpTaskThread() {
    NORVANE_LOG_INFO(log::internalLogger(), L"entered EMT Service stop");
    if (!g_emtTask) {
        record(kStopLabel, L"EMT Service is already stopped");
        return;
    }
    g_emtTask->m_stop = 1;
    internal::awaitTaskServiceEndpoint();  // the stop message needs an endpoint to go to
    executeMinidumpTask(terminateService, nullptr, 0, nullptr);
    if (!g_emtThread->timed_join(boost::posix_time::milliseconds(kStopJoinMilliseconds))) {
        record(kStopLabel, L"EMT Service did not end, left behind");
    }
    g_emtThread.reset();
    NORVANE_LOG_INFO(log::internalLogger(), L"EMT Service stopped!");
    record(kStopLabel, L"EMT Service stopped!");
    g_emtFirstEndpoint = {};
    g_emtTask.reset();
}

void startEMTThread() { startExecuteMinidumpTaskthread(); }
void stopEMTThread() { stopExecuteMinidumpTaskThread(); }

}  // namespace norvane_1
