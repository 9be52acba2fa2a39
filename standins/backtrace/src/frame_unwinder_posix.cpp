// Unwinding with libunwind, on Linux. POSIX code only.
//
// The walk runs on one thread over the stack of another that waits: it reads
// that stack in place. libunwind's own local mode would read any address its
// unwind rules compute, and a damaged stack would make the walk fault; so the
// walk uses an address space of its own, with libunwind's local ways of
// finding unwind information but with reads that first ask whether the
// memory can be read (readable_memory_posix.h), and with registers that
// come from the saved context rather than from the walking thread.
#include "frame_unwinder.h"

#include "libunwind_binding_posix.h"
#include "readable_memory_posix.h"

#include <cstddef>
#include <unordered_map>

namespace bt {
namespace {

using Register = std::uint64_t norvane_1::Context::*;

// The context's field for each of libunwind's x86-64 register numbers.
Register registerField(unw_regnum_t number) {
    switch (number) {
        case UNW_X86_64_RAX: return &norvane_1::Context::EAX;
        case UNW_X86_64_RDX: return &norvane_1::Context::EDX;
        case UNW_X86_64_RCX: return &norvane_1::Context::ECX;
        case UNW_X86_64_RBX: return &norvane_1::Context::EBX;
        case UNW_X86_64_RSI: return &norvane_1::Context::ESI;
        case UNW_X86_64_RDI: return &norvane_1::Context::EDI;
        case UNW_X86_64_RBP: return &norvane_1::Context::EBP;
        case UNW_X86_64_RSP: return &norvane_1::Context::ESP;
        case UNW_X86_64_R8: return &norvane_1::Context::R8;
        case UNW_X86_64_R9: return &norvane_1::Context::R9;
        case UNW_X86_64_R10: return &norvane_1::Context::R10;
        case UNW_X86_64_R11: return &norvane_1::Context::R11;
        case UNW_X86_64_R12: return &norvane_1::Context::R12;
        case UNW_X86_64_R13: return &norvane_1::Context::R13;
        case UNW_X86_64_R14: return &norvane_1::Context::R14;
        case UNW_X86_64_R15: return &norvane_1::Context::R15;
        case UNW_X86_64_RIP: return &norvane_1::Context::EIP;
        default: return nullptr;
    }
}

constexpr unw_regnum_t kRegisterCount = UNW_X86_64_RIP + 1;

// The stack of another thread holds the address sanitizer's poisoned zones:
// these reads are meant, so they bypass the sanitizers' checks (and memcpy,
// which they intercept). The memory was found readable first.
__attribute__((no_sanitize("address", "thread"))) void copyFrom(std::uint64_t address, void* buffer, std::size_t size) {
    auto const* from = reinterpret_cast<unsigned char const volatile*>(address);
    auto* to = static_cast<unsigned char*>(buffer);
    for (std::size_t i = 0; i < size; ++i) to[i] = from[i];
}

class LibunwindUnwinder final : public FrameUnwinder {
public:
    LibunwindUnwinder(Libunwind const& libunwind, ReadableMemory memory)
        : m_unw(libunwind), m_memory(std::move(memory)) {
        unw_accessors_t accessors = *m_unw.getAccessors(*m_unw.localAddressSpace);
        accessors.access_mem = accessMemory;
        accessors.access_reg = accessRegister;
        accessors.access_fpreg = accessFloatRegister;
        accessors.resume = resume;
        accessors.get_proc_name = procedureName;
        m_space = m_unw.createAddressSpace(&accessors, 0);
        // The space serves one walk on one thread: a cache would hardly be
        // hit, and its lock masks every signal around each use, two system
        // calls a time.
        if (m_space) m_unw.setCachingPolicy(m_space, UNW_CACHE_NONE);
    }
    ~LibunwindUnwinder() override {
        if (m_space) m_unw.destroyAddressSpace(m_space);
    }
    LibunwindUnwinder(LibunwindUnwinder const&) = delete;
    LibunwindUnwinder& operator=(LibunwindUnwinder const&) = delete;

    bool ready() const { return m_space != nullptr && !m_memory.empty(); }

    bool start(norvane_1::Context const& registers) override {
        m_registers = registers;
        return m_unw.initRemote(&m_cursor, m_space, this) == 0;
    }

    // Code without unwind information stops the walk here, before libunwind
    // would guess at a frame-pointer chain.
    Step step(std::uint64_t& instructionPointer, std::uint64_t& stackPointer) override {
        if (!hasUnwindInformation()) return Step::stopped;
        int const moved = m_unw.step(&m_cursor);
        if (moved == 0) return Step::end;
        unw_word_t instruction = 0;
        unw_word_t stack = 0;
        if (moved < 0 || m_unw.getRegister(&m_cursor, UNW_REG_IP, &instruction) != 0 ||
            m_unw.getRegister(&m_cursor, UNW_REG_SP, &stack) != 0) {
            return Step::stopped;
        }
        instructionPointer = instruction;
        stackPointer = stack;
        return Step::caller;
    }

    norvane_1::Context registers() override {
        norvane_1::Context registers = m_registers;
        for (unw_regnum_t number = 0; number < kRegisterCount; ++number) {
            unw_word_t value = 0;
            if (m_unw.getRegister(&m_cursor, number, &value) == 0) registers.*registerField(number) = value;
        }
        return registers;
    }

    bool read(std::uint64_t address, void* buffer, std::size_t size) override {
        if (!m_memory.holds(address, size)) return false;
        copyFrom(address, buffer, size);
        return true;
    }

private:
    // Where it finds none, libunwind describes a procedure of one byte at
    // the instruction itself rather than fail. The answer is kept for each
    // address: a deep stack passes the same few return addresses again and
    // again, and the search for a procedure costs as much as the step.
    bool hasUnwindInformation() {
        unw_word_t instruction = 0;
        if (m_unw.getRegister(&m_cursor, UNW_REG_IP, &instruction) != 0) return false;
        auto const known = m_described.find(instruction);
        if (known != m_described.end()) return known->second;
        unw_proc_info_t procedure;
        bool const described = m_unw.getProcedureInfo(&m_cursor, &procedure) == 0 &&
                               !(procedure.start_ip == instruction && procedure.end_ip == instruction + 1);
        m_described.emplace(instruction, described);
        return described;
    }

    static LibunwindUnwinder& self(void* argument) { return *static_cast<LibunwindUnwinder*>(argument); }

    static int accessMemory(unw_addr_space_t, unw_word_t address, unw_word_t* value, int write, void* argument) {
        if (write != 0) return -UNW_EREADONLYREG;
        return self(argument).read(address, value, sizeof *value) ? 0 : -UNW_EINVAL;
    }

    static int accessRegister(unw_addr_space_t, unw_regnum_t number, unw_word_t* value, int write, void* argument) {
        Register const field = registerField(number);
        if (write != 0 || field == nullptr) return -UNW_EBADREG;
        *value = self(argument).m_registers.*field;
        return 0;
    }

    static int accessFloatRegister(unw_addr_space_t, unw_regnum_t, unw_fpreg_t*, int, void*) { return -UNW_EBADREG; }
    static int resume(unw_addr_space_t, unw_cursor_t*, void*) { return -UNW_EINVAL; }
    static int procedureName(unw_addr_space_t, unw_word_t, char*, std::size_t, unw_word_t*, void*) {
        return -UNW_ENOINFO;
    }

    Libunwind const& m_unw;
    ReadableMemory m_memory;
    unw_addr_space_t m_space = nullptr;
    unw_cursor_t m_cursor{};
    norvane_1::Context m_registers;
    std::unordered_map<std::uint64_t, bool> m_described;
};

}  // namespace

std::unique_ptr<FrameUnwinder> createLocalUnwinder() {
    Libunwind const* const libunwind = bt::libunwind();
    if (libunwind == nullptr) return nullptr;
    auto unwinder = std::make_unique<LibunwindUnwinder>(*libunwind, ReadableMemory::ofThisProcess());
    if (!unwinder->ready()) return nullptr;
    return unwinder;
}

}  // namespace bt
