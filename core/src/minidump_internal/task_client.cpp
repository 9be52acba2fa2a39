// The task service's client: one task sent, its answer awaited. Portable
// code only; task_channel.h is the platform's part.
#include <norvane_1/crash_handling.h>
#include <norvane_1/minidump_task.h>

#include "logging/logging.h"
#include "task_channel.h"
#include "task_messages.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace norvane_1 {
namespace {

constexpr char kClientLabel[] = "norvane_1::executeMinidumpTaskInternal";
constexpr std::chrono::milliseconds kFlushPatience{0};

// The caller's bytes as a zero-terminated narrow text, for the log line.
std::string dataText(task::Request const& request) {
    auto const* begin = reinterpret_cast<char const*>(request.data);
    return std::string(begin, std::find(begin, begin + request.size, '\0'));
}

}  // namespace

bool executeMinidumpTask(minidump_task_code_t code, void* data, std::uint64_t size, wchar_t const* directory) {
    auto& logger = log::internalLogger();
    auto const record = [directory](wchar_t const* text) { addCreationLogRecord(kClientLabel, text, directory); };

    // 1.-3.
    NORVANE_LOG_INFO(logger, L"executeMinidumpTask: opCode=" << static_cast<std::uint32_t>(code));
    if (data != nullptr && size > task::kDataCapacity) {
        NORVANE_LOG_ERROR(logger,
                          L"executeMinidumpTask: " << size << L" bytes of data, more than " << task::kDataCapacity);
        return false;
    }
    if (!task_channel::waitForServer()) {
        NORVANE_LOG_INFO(logger, L"executeMinidumpTask: Wait for THE PIPE failed");
        record(L"Wait for THE PIPE failed");
        return false;
    }
    std::unique_ptr<task_channel::Connection> const pipe = task_channel::openClient();
    if (!pipe) {
        NORVANE_LOG_INFO(logger, L"executeMinidumpTask: CreateFile failed");
        record(L"Create of THE_PIPE failed");
        return false;
    }

    // 4.-6.
    task::Request request;
    request.code = code;
    if (data != nullptr && size != 0) {
        std::memcpy(request.data, data, static_cast<std::size_t>(size));
        request.size = size;
    }
    if (!pipe->write(&request, sizeof request)) {
        NORVANE_LOG_INFO(logger, L"executeMinidumpTask: WriteFile failed");
        record(L"Write to THE_PIPE failed");
        return false;
    }
    pipe->flush(kFlushPatience);

    // 7. No answer to the end of the service.
    if (code == terminateService) {
        NORVANE_LOG_INFO(logger, L"executeMinidumpTask: Sent TERMINATE command, quit NOW!");
        record(L"Sent TERMINATE command, quit NOW!");
        return true;
    }

    // 8.-12.
    NORVANE_LOG_INFO(logger, L"executeMinidumpTask: waiting for the task <" << static_cast<std::uint32_t>(code)
                                                                            << L">, <" << dataText(request).c_str()
                                                                            << L"> to finish");
    record(L"waiting for the task to complete...");
    char reply[sizeof(task::Request)] = {};
    // The answer may take long: the task is a whole stack collection.
    std::size_t const got = pipe->read(reply, sizeof reply, task_channel::kNoTimeLimit);
    if (got == 0) {
        NORVANE_LOG_INFO(logger, L"executeMinidumpTask: Cannot read from THE PIPE");
        record(L"Cannot read from THE PIPE");
        return false;
    }
    std::string const answer(reply, std::min<std::size_t>(got, sizeof(task::Reply::verdict)));
    NORVANE_LOG_INFO(logger, L"executeMinidumpTask: read <" << answer.c_str() << L"> from THE PIPE");
    if (answer != task::kPass) {
        NORVANE_LOG_INFO(logger, L"executeMinidumpTask: failed to execute task: " << answer.c_str());
        record(L"failed to execute task");
        return false;
    }
    return true;
}

}  // namespace norvane_1
