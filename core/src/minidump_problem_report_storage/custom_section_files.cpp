// Bringing the registered custom sections into a report, and the memory
// figure for readers of a finished report. Portable code only.
#include <norvane_1/os_layer.h>
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

#include "minidump_internal/log_directory.h"
#include "os_layer/text_files.h"

#include <gavrel2/file_content.h>
#include <gavrel2/path.h>
#include <vantix_2_18/utf.h>

#include <boost/lexical_cast.hpp>

#include <cmath>

namespace norvane_1 {
namespace {

void readSectionFile(StringMap& sections, std::wstring const& name, std::wstring const& path) {
    if (name.empty() || path.empty() || !gavrel2::path_t::exists(path)) return;
    sections[name] = gavrel2::get_file_content(gavrel2::get_file_cp(path, 0), path, 0);
}

}  // namespace

bool ProblemReportStorage::appendCustomSections(wchar_t const* directory) {
    std::wstring const folder = directoryOrLogDirectory(directory);
    if (folder.empty()) return false;
    std::ifstream list;
    os_layer::openTextFile(list, folder + L"norvane_custom_sections.txt", std::ios::in);
    if (!list) return true;
    std::string name;
    std::string path;
    while (list) {
        name.clear();
        path.clear();
        std::getline(list, name);
        std::getline(list, path);
        readSectionFile(m_sections, VANTIX_2_18::utf::from_utf8(name), VANTIX_2_18::utf::from_utf8(path));
    }
    list.close();
    // A report of a live process has taken in its creation log; the file goes.
    if (isProcessDump()) os_layer::deleteFile(m_reportPath + L"norvane_creation_log.txt");
    return true;
}

bool ProblemReportStorage::getVMemFootPrint(std::uint64_t& value) {
    if (m_crashedTid == 0 && m_crashedPid == 0) return false;
    StringMap process;
    processSectionToMap(getSection(L"Process"), process, {});
    if (process.empty()) return false;
    std::wstring size = get(process, L"Virtual Memory Size");
    if (size.empty()) return false;
    if (size.back() == L'K') size.pop_back();
    double const kilobytes = boost::lexical_cast<double>(size);
    value = static_cast<std::uint64_t>(std::floor(kilobytes / 10000.0 + 0.5));
    return true;
}

}  // namespace norvane_1
