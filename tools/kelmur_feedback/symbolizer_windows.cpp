#include "symbolizer.h"

#include <vantix_2_18/utf.h>

#include <windows.h>
#include <dbghelp.h>

#include <map>
#include <utility>

namespace kelmur_feedback {
namespace {

constexpr std::size_t kLongestName = 1024;

// The debug-help library keeps its state per process handle; with no
// process to read, any value no real handle takes will do, as long as it
// is the same for every call.
HANDLE sessionHandle(void const* owner) { return const_cast<HANDLE>(owner); }

class DebugHelpSymbolizer : public Symbolizer {
public:
    DebugHelpSymbolizer() {
        ::SymSetOptions(SYMOPT_UNDNAME | SYMOPT_LOAD_LINES | SYMOPT_FAIL_CRITICAL_ERRORS | SYMOPT_NO_PROMPTS);
        m_ready = ::SymInitializeW(sessionHandle(this), nullptr, FALSE) != FALSE;
    }
    ~DebugHelpSymbolizer() override {
        if (m_ready) ::SymCleanup(sessionHandle(this));
    }
    DebugHelpSymbolizer(DebugHelpSymbolizer const&) = delete;
    DebugHelpSymbolizer& operator=(DebugHelpSymbolizer const&) = delete;

    SourcePlace lookUp(ModuleFile const& file, std::uint64_t address) override {
        if (!loaded(file.path, file.base)) return {};
        SourcePlace place;
        place.function = functionAt(address);
        addLineAt(address, place);
        return place;
    }

private:
    // Each file once, at the base the crashed process had it at, so that
    // the report's addresses need no translation.
    bool loaded(std::wstring const& modulePath, std::uint64_t base) {
        auto const key = std::make_pair(modulePath, base);
        auto const known = m_modules.find(key);
        if (known != m_modules.end()) return known->second;
        bool const ok = m_ready && !modulePath.empty() &&
                        ::SymLoadModuleExW(sessionHandle(this), nullptr, modulePath.c_str(), nullptr, base, 0, nullptr,
                                           0) != 0;
        m_modules.emplace(key, ok);
        return ok;
    }

    std::string functionAt(std::uint64_t address) {
        alignas(SYMBOL_INFOW) unsigned char buffer[sizeof(SYMBOL_INFOW) + kLongestName * sizeof(wchar_t)] = {};
        auto* symbol = reinterpret_cast<SYMBOL_INFOW*>(buffer);
        symbol->SizeOfStruct = sizeof(SYMBOL_INFOW);
        symbol->MaxNameLen = kLongestName;
        DWORD64 displacement = 0;
        if (!::SymFromAddrW(sessionHandle(this), address, &displacement, symbol)) return {};
        return VANTIX_2_18::utf::to_utf8(std::wstring(symbol->Name, symbol->NameLen));
    }

    void addLineAt(std::uint64_t address, SourcePlace& place) {
        IMAGEHLP_LINEW64 line = {};
        line.SizeOfStruct = sizeof line;
        DWORD displacement = 0;
        if (!::SymGetLineFromAddrW64(sessionHandle(this), address, &displacement, &line) || !line.FileName) return;
        place.file = VANTIX_2_18::utf::to_utf8(line.FileName);
        place.line = line.LineNumber;
    }

    bool m_ready = false;
    std::map<std::pair<std::wstring, std::uint64_t>, bool> m_modules;
};

}  // namespace

std::unique_ptr<Symbolizer> makeSymbolizer() { return std::make_unique<DebugHelpSymbolizer>(); }

}  // namespace kelmur_feedback
