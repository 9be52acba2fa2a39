// Bringing the registered custom sections into a report. Portable code only.
#include "report_enrichment.h"

#include "custom_section_list.h"

#include <gavrel2/file_content.h>
#include <gavrel2/path.h>

namespace norvane_1 {
namespace internal {

bool readCustomSections(std::wstring const& folder, StringMap& sections) {
    CustomSectionList list;
    if (!readCustomSectionList(folder, list)) return false;
    for (auto const& entry : list) {
        // A section whose file has gone is left out without a word.
        if (!gavrel2::path_t::exists(entry.second)) continue;
        sections[entry.first] = gavrel2::get_file_content(gavrel2::get_file_cp(entry.second, 0), entry.second, 0);
    }
    return true;
}

}  // namespace internal
}  // namespace norvane_1
