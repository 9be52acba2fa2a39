// Data a report carries beyond the crash itself: the premortal log and the
// host's application properties. Portable code only.
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/string_traits.h>

namespace norvane_1 {

void ProblemReportStorage::addPremortalLog(std::vector<std::wstring> const& lines) {
    m_premortalLog.clear();
    for (auto const& line : lines) {
        m_premortalLog += line;
        m_premortalLog += L'\n';
    }
}

void ProblemReportStorage::setAppPropertyPool(AppPropertyPool const& pool) {
    if (&pool == &m_appPropertyPool) return;
    m_appPropertyPool = pool;
}

std::wstring ProblemReportStorage::processPropertiesToString() const {
    if (m_appPropertyPool.empty()) return std::wstring();
    StringMap keys;
    for (auto const& property : m_appPropertyPool) {
        keys[property.first] = gavrel2::get_value_string(property.second).as_wstring();
    }
    return processMapToSection(keys);
}

}  // namespace norvane_1
