// The in-process collection of the crashed thread's stack, and the fallback
// to it that the handler process asks for. Portable code only.
//
// Both run while the crashed thread waits: the collection in collect mode 1
// on the worker, before the export; the fallback on the task service's
// thread, while the worker waits for the handler process. Either way the
// report and DumpInfo are theirs alone for that time.
#include <norvane_1/crash_handling.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/module_map.h>

#include "logging/logging.h"
#include "module_map/module_scan.h"
#include "module_map/stack_capture.h"
#include "os_layer/text_files.h"

#include <gavrel2/file_content.h>
#include <gavrel2/path.h>
#include <vantix_2_18/utf.h>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <fstream>
#include <iterator>
#include <memory>

namespace norvane_1 {
namespace {

constexpr char kCollectLabel[] = "norvane_1::HandlerState::inProcessStackCollect";
constexpr char kFallbackLabel[] = "norvane_1::HandlerState::fallbackInProcess";
constexpr int kUtf8 = 1;

void record(std::wstring const& text) { addCreationLogRecord(kCollectLabel, text, nullptr); }

struct ModuleMapFree {
    void operator()(MinidumpModuleMap* map) const { minidumpFreeModuleMap(map); }
};
using OwnedModuleMap = std::unique_ptr<MinidumpModuleMap, ModuleMapFree>;

// The file name of the module at the address, as the report's module list
// tells it; empty if none.
std::wstring moduleNameAt(ProblemReportStorage const& report, std::uint64_t address) {
    ModuleInfo module;
    if (address == 0 || !report.findModule(address, module)) return std::wstring();
    return gavrel2::path_t(module.FullName).get_leaf();
}

// The second way of reading the report: its bytes as they are, as UTF-8.
std::wstring readUtf8Bytes(std::wstring const& path) {
    std::ifstream in;
    os_layer::openTextFile(in, path, std::ios::in | std::ios::binary);
    if (!in) return std::wstring();
    std::string const bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return VANTIX_2_18::utf::from_utf8(bytes);
}

}  // namespace

bool HandlerState::inProcessStackCollect(DumpInfo& info) {
    // 1.-3.
    record(L"Performing in-proc stack collect...");
    OwnedModuleMap const map(minidumpAllocModuleMap());
    if (!map) return false;
    record(L"Loading module map...");

    // 4.-6. This process's modules, all of them for now. On Linux the
    // regions are one snapshot of the mappings, which the stack's scan
    // below reads too.
    m_storage.clearModuleInfo();
    std::unique_ptr<RegionSource> const regions = openRegionSourceOrNone(0);
    if (!regions || !loadModuleMap(map.get(), *regions)) {
        record(L"Failed to load module map, aborting...");
        return false;
    }
    storeModuleInfo(map.get(), true);

    // 7. The exception's module, while the list is whole. DumpInfo gets it
    // too: the export replaces the report's exception with DumpInfo's, and
    // in collect mode 1 the report has no exception yet.
    if (m_storage.isException()) m_storage.updateExceptionSection();
    info.exception.module = moduleNameAt(m_storage, info.exception.address);

    // 8. The stack, and the list pruned to what it passes through.
    if (!collectThreadStack(info, m_context, map.get(), *regions, m_storage)) {
        record(L"In-proc stack collect failed");
        return false;
    }

    // 9.-11. The product facts, unless the report has them.
    auto& logger = log::internalLogger();
    record(L"Stack successfully collected");
    record(L"Set product info and failed product name");
    NORVANE_LOG_INFO(logger, L"inProcessStackCollect: set product info and failed product name");
    if (!m_storage.getProductInfo().empty() && !m_storage.getFailedProductName().empty()) {
        record(L"Product info and failed prod name already set");
        NORVANE_LOG_INFO(logger, L"inProcessStackCollect: product info and failed prod name already set");
    } else if (!m_storage.updateProductInfo()) {
        record(L"Problems while collecting product info");
        NORVANE_LOG_ERROR(logger, L"inProcessStackCollect: problems while collecting product info");
    }

    // 12.-14. The debug facts of the modules that are left.
    NORVANE_LOG_INFO(logger, L"inProcessStackCollect: update module map");
    record(L"Update module map");
    m_storage.updateModuleMap();
    return true;
}

void HandlerState::fallbackInProcess(DumpInfo& info) {
    // The worker made the report under this mutex (crash_work.cpp).
    boost::lock_guard<boost::mutex> guard(getMutex());
    // 1.-4. The report as the handler process left it.
    addCreationLogRecord(kFallbackLabel, L"Fallback to in-proc stack collect...", nullptr);
    std::wstring text = gavrel2::get_file_content(kUtf8, info.crashInfoPath, 0);
    if (text.empty()) text = readUtf8Bytes(info.crashInfoPath);
    m_storage.fromString(text);

    // 5. A stack of the crashed thread is there already: nothing to do.
    std::uint32_t const crashedThread = m_storage.getCrashedTid();
    if (m_storage.getStackMap().count(crashedThread) != 0 || m_storage.getStackFramesMap().count(crashedThread) != 0) {
        return;
    }

    // 6.-8. Collect it here, and write the report anew, also if that failed.
    info.stackProcessId = m_storage.getCrashedPid();
    m_collectMode = 1;
    inProcessStackCollect(info);
    gavrel2::set_file_content(m_storage.toString(), kUtf8, info.crashInfoPath);
}

void HandlerState::storeModuleInfo(MinidumpModuleMap* map, bool skipKnown) {
    for (std::uint32_t i = 0; i < map->count; ++i) m_storage.addModuleInfo(&map->ranges[i], skipKnown);
}

}  // namespace norvane_1
