#include "symbolizer.h"

#include <vantix_2_18/utf.h>

#include <elfutils/libdwfl.h>

#include <algorithm>
#include <map>
#include <utility>

namespace kelmur_feedback {
namespace {

// No process behind the session: modules come from their files alone, and
// debug files are looked for beside them and by build id.
Dwfl_Callbacks const kOfflineCallbacks = {
    dwfl_build_id_find_elf,
    dwfl_standard_find_debuginfo,
    dwfl_offline_section_address,
    nullptr,
};

class DwflSymbolizer : public Symbolizer {
public:
    DwflSymbolizer() : m_session(dwfl_begin(&kOfflineCallbacks)) {}
    ~DwflSymbolizer() override {
        if (m_session) dwfl_end(m_session);
    }
    DwflSymbolizer(DwflSymbolizer const&) = delete;
    DwflSymbolizer& operator=(DwflSymbolizer const&) = delete;

    SourcePlace lookUp(ModuleFile const& file, std::uint64_t address) override {
        Dwfl_Module* module = moduleOf(file.path, file.base);
        if (!module) return {};
        SourcePlace place;
        if (!sameBuild(module, file.identity)) {
            place.otherBuild = true;
            return place;
        }
        if (char const* name = dwfl_module_addrname(module, address)) place.function = name;
        if (Dwfl_Line* line = dwfl_module_getsrc(module, address)) {
            int lineNumber = 0;
            if (char const* source = dwfl_lineinfo(line, nullptr, &lineNumber, nullptr, nullptr, nullptr)) {
                place.file = source;
                place.line = static_cast<std::uint32_t>(lineNumber);
            }
        }
        return place;
    }

private:
    // The report holds the start of the build id of the file that crashed;
    // a file rebuilt since then has another, or none.
    static bool sameBuild(Dwfl_Module* module, std::array<std::uint8_t, 16> const& identity) {
        if (std::all_of(identity.begin(), identity.end(), [](std::uint8_t byte) { return byte == 0; })) return true;
        unsigned char const* buildId = nullptr;
        GElf_Addr where = 0;
        int const length = dwfl_module_build_id(module, &buildId, &where);
        if (length <= 0) return false;
        std::array<std::uint8_t, 16> start{};
        std::copy_n(buildId, std::min<std::size_t>(start.size(), static_cast<std::size_t>(length)), start.begin());
        return start == identity;
    }

    // The module as reported once; a file that can't be read is remembered
    // as missing rather than tried again for every frame.
    Dwfl_Module* moduleOf(std::wstring const& modulePath, std::uint64_t base) {
        auto const key = std::make_pair(modulePath, base);
        auto const known = m_modules.find(key);
        if (known != m_modules.end()) return known->second;
        Dwfl_Module* module = report(VANTIX_2_18::utf::to_utf8(modulePath), base);
        m_modules.emplace(key, module);
        return module;
    }

    // The base is where the file's first loadable segment lies, as the
    // crashed process's module map gives it.
    Dwfl_Module* report(std::string const& path, std::uint64_t base) {
        if (!m_session || path.empty()) return nullptr;
        dwfl_report_begin_add(m_session);
        Dwfl_Module* module = dwfl_report_elf(m_session, path.c_str(), path.c_str(), -1, base, false);
        dwfl_report_end(m_session, nullptr, nullptr);
        return module;
    }

    Dwfl* m_session;
    std::map<std::pair<std::wstring, std::uint64_t>, Dwfl_Module*> m_modules;
};

}  // namespace

std::unique_ptr<Symbolizer> makeSymbolizer() { return std::make_unique<DwflSymbolizer>(); }

}  // namespace kelmur_feedback
