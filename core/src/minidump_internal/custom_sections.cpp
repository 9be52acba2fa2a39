// Registration of custom report sections. Portable code only.
#include <norvane_1/crash_handling.h>

#include "minidump_problem_report_storage/custom_section_list.h"
#include "minidump_problem_report_storage/log_directory.h"

namespace norvane_1 {

add_custom_section_result_t addCrashReportCustomSection(std::wstring const& name, std::wstring const& file,
                                                        wchar_t const* directory) {
    if (name.empty() || file.empty()) return custom_section_bad_argument;
    std::wstring const folder = directory ? std::wstring(directory) : logDirectory();
    if (folder.empty()) return custom_section_file_error;
    switch (internal::addToCustomSectionList(folder, name, file)) {
        case internal::ListAddition::added: return custom_section_added;
        case internal::ListAddition::nameTaken: return custom_section_exists;
        case internal::ListAddition::fileError: break;
    }
    return custom_section_file_error;
}

}  // namespace norvane_1
