// Stacks of another process on Linux: ptrace stops one thread at a time,
// libunwind's remote unwinding walks it through that thread's memory.
// POSIX code only.
#include "outside_stacks.h"

#include <libunwind-ptrace.h>

#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

namespace kelmur_feedback {
namespace {

using namespace std::chrono_literals;

constexpr int kMostFrames = 256;
// Where the kernel lets only ancestors trace, the library grants us a
// moment after it started us; a stop may take a moment on a busy machine.
constexpr auto kAttachPatience = 1s;
constexpr auto kStopPatience = 2s;

std::vector<std::uint32_t> threadsOf(std::uint32_t processId) {
    std::vector<std::uint32_t> threads;
    std::error_code error;
    for (auto const& entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(processId) + "/task", error)) {
        threads.push_back(static_cast<std::uint32_t>(std::stoul(entry.path().filename().string())));
    }
    return threads;
}

// A thread held in a ptrace stop for as long as the object lives.
class StoppedThread {
public:
    explicit StoppedThread(pid_t thread) : m_thread(thread) {}
    ~StoppedThread() {
        if (m_attached) ::ptrace(PTRACE_DETACH, m_thread, nullptr, nullptr);
    }
    StoppedThread(StoppedThread const&) = delete;
    StoppedThread& operator=(StoppedThread const&) = delete;

    // Empty on success, else why not.
    std::string stop() {
        auto const deadline = std::chrono::steady_clock::now() + kAttachPatience;
        while (::ptrace(PTRACE_SEIZE, m_thread, nullptr, nullptr) != 0) {
            if (errno != EPERM || std::chrono::steady_clock::now() > deadline) return std::strerror(errno);
            std::this_thread::sleep_for(20ms);
        }
        m_attached = true;
        if (::ptrace(PTRACE_INTERRUPT, m_thread, nullptr, nullptr) != 0) return std::strerror(errno);
        return waitForStop();
    }

    bool registers(user_regs_struct& regs) const {
        iovec vector{&regs, sizeof regs};
        return ::ptrace(PTRACE_GETREGSET, m_thread, reinterpret_cast<void*>(1), &vector) == 0;  // NT_PRSTATUS
    }

private:
    // A stop takes some microseconds: the first looks come quickly, so that
    // fifty threads don't wait a millisecond each.
    std::string waitForStop() {
        auto const deadline = std::chrono::steady_clock::now() + kStopPatience;
        for (auto pause = 10us; std::chrono::steady_clock::now() < deadline; pause = std::min(pause * 2, 1000us)) {
            int status = 0;
            pid_t const result = ::waitpid(m_thread, &status, __WALL | WNOHANG);
            if (result == m_thread && WIFSTOPPED(status)) return {};
            if (result < 0 && errno != EINTR) return std::strerror(errno);
            std::this_thread::sleep_for(pause);
        }
        return "the thread did not stop";
    }

    pid_t m_thread;
    bool m_attached = false;
};

norvane_1::Context contextOf(user_regs_struct const& regs) {
    norvane_1::Context context;
    context.EAX = regs.rax, context.EBX = regs.rbx, context.ECX = regs.rcx, context.EDX = regs.rdx;
    context.ESI = regs.rsi, context.EDI = regs.rdi, context.EBP = regs.rbp, context.ESP = regs.rsp;
    context.EIP = regs.rip;
    context.R8 = regs.r8, context.R9 = regs.r9, context.R10 = regs.r10, context.R11 = regs.r11;
    context.R12 = regs.r12, context.R13 = regs.r13, context.R14 = regs.r14, context.R15 = regs.r15;
    return context;
}

// The registers a walk starts from, when not the thread's own. The tool
// runs one walk at a time, so one pointer serves.
norvane_1::Context const* g_startingRegisters = nullptr;

std::uint64_t const* registerOf(norvane_1::Context const& context, unw_regnum_t number) {
    switch (number) {
        case UNW_X86_64_RAX: return &context.EAX;
        case UNW_X86_64_RDX: return &context.EDX;
        case UNW_X86_64_RCX: return &context.ECX;
        case UNW_X86_64_RBX: return &context.EBX;
        case UNW_X86_64_RSI: return &context.ESI;
        case UNW_X86_64_RDI: return &context.EDI;
        case UNW_X86_64_RBP: return &context.EBP;
        case UNW_X86_64_RSP: return &context.ESP;
        case UNW_X86_64_R8: return &context.R8;
        case UNW_X86_64_R9: return &context.R9;
        case UNW_X86_64_R10: return &context.R10;
        case UNW_X86_64_R11: return &context.R11;
        case UNW_X86_64_R12: return &context.R12;
        case UNW_X86_64_R13: return &context.R13;
        case UNW_X86_64_R14: return &context.R14;
        case UNW_X86_64_R15: return &context.R15;
        case UNW_X86_64_RIP: return &context.EIP;
        default: return nullptr;
    }
}

// Registers come from the starting point when there is one (libunwind asks
// for the first frame's, and for any register no frame has saved), from the
// stopped thread otherwise; memory always from the thread.
int accessRegister(unw_addr_space_t space, unw_regnum_t number, unw_word_t* value, int write, void* access) {
    if (g_startingRegisters != nullptr && !write) {
        if (std::uint64_t const* known = registerOf(*g_startingRegisters, number)) {
            *value = *known;
            return 0;
        }
    }
    return _UPT_access_reg(space, number, value, write, access);
}

unw_accessors_t accessorsStartingFromGivenRegisters() {
    unw_accessors_t accessors = _UPT_accessors;
    accessors.access_reg = accessRegister;
    return accessors;
}

norvane_1::CleanStack unwind(unw_addr_space_t space, pid_t thread, norvane_1::Context const* start) {
    norvane_1::CleanStack frames;
    void* access = _UPT_create(thread);
    if (access == nullptr) return frames;
    g_startingRegisters = start;
    unw_cursor_t cursor;
    if (unw_init_remote(&cursor, space, access) == 0) {
        for (int depth = 0; depth < kMostFrames; ++depth) {
            unw_word_t ip = 0;
            unw_word_t sp = 0;
            if (unw_get_reg(&cursor, UNW_REG_IP, &ip) != 0 || ip == 0) break;
            unw_get_reg(&cursor, UNW_REG_SP, &sp);
            norvane_1::StackFrame frame;
            frame.address = ip;
            frame.stackAddress = sp;
            frame.kind = 2;
            frames.push_back(frame);
            if (unw_step(&cursor) <= 0) break;
        }
    }
    g_startingRegisters = nullptr;
    _UPT_destroy(access);
    return frames;
}

}  // namespace

OutsideStacks collectThreadStacks(std::uint32_t processId, StartingPoints const& startAt) {
    OutsideStacks result;
    unw_accessors_t accessors = accessorsStartingFromGivenRegisters();
    unw_addr_space_t const space = unw_create_addr_space(&accessors, 0);
    if (space == nullptr) {
        result.error = "the unwinder could not be set up";
        return result;
    }
    // The threads share their modules: what the unwinder learnt of a
    // module's unwind information for one thread serves the next.
    unw_set_caching_policy(space, UNW_CACHE_GLOBAL);
    for (std::uint32_t thread : threadsOf(processId)) {
        StoppedThread stopped(static_cast<pid_t>(thread));
        std::string const why = stopped.stop();
        user_regs_struct regs{};
        if (!why.empty() || !stopped.registers(regs)) {
            // A thread that ended meanwhile is no loss; anything else is said.
            if (std::filesystem::exists("/proc/" + std::to_string(processId) + "/task/" + std::to_string(thread))) {
                result.error = "thread " + std::to_string(thread) + ": " + (why.empty() ? "no registers" : why);
            }
            continue;
        }
        auto const given = startAt.find(thread);
        norvane_1::Context const* start = given == startAt.end() ? nullptr : &given->second;
        result.threads.push_back(
            {thread, start ? *start : contextOf(regs), unwind(space, static_cast<pid_t>(thread), start)});
    }
    unw_destroy_addr_space(space);
    return result;
}

}  // namespace kelmur_feedback
