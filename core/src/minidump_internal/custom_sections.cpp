// Registration of custom report sections in "norvane_custom_sections.txt".
// Portable code only.
//
// The list holds two lines per section, name then path, and is only ever
// appended to. Its text is UTF-8, as its reader expects.
#include <norvane_1/crash_handling.h>

#include "log_directory.h"
#include "os_layer/text_files.h"

#include <vantix_2_18/utf.h>

#include <map>

namespace norvane_1 {
namespace {

using SectionList = std::map<std::wstring, std::wstring>;

// Pairs of lines; a pair with an empty line is dropped, a later name wins.
bool readSectionList(std::wstring const& listPath, SectionList& sections) {
    std::ifstream in;
    os_layer::openTextFile(in, listPath, std::ios::in);
    if (!in) return false;
    std::string name;
    std::string path;
    while (in) {
        name.clear();
        path.clear();
        std::getline(in, name);
        std::getline(in, path);
        if (!name.empty() && !path.empty()) {
            sections[VANTIX_2_18::utf::from_utf8(name)] = VANTIX_2_18::utf::from_utf8(path);
        }
    }
    return true;
}

}  // namespace

add_custom_section_result_t addCrashReportCustomSection(std::wstring const& name, std::wstring const& file,
                                                        wchar_t const* directory) {
    if (name.empty() || file.empty()) return custom_section_bad_argument;
    std::wstring const folder = directory ? std::wstring(directory) : logDirectory();
    if (folder.empty()) return custom_section_file_error;
    std::wstring const listPath = folder + L"norvane_custom_sections.txt";
    {
        // Creates the list when it is missing.
        std::ofstream create;
        os_layer::openTextFile(create, listPath, std::ios::out | std::ios::app);
        if (!create) return custom_section_file_error;
    }
    SectionList sections;
    if (!readSectionList(listPath, sections)) return custom_section_file_error;
    if (sections.count(name) != 0) return custom_section_exists;

    std::ofstream out;
    os_layer::openTextFile(out, listPath, std::ios::out | std::ios::app);
    if (!out || !out.good()) return custom_section_file_error;
    out << VANTIX_2_18::utf::to_utf8(name) << std::endl << VANTIX_2_18::utf::to_utf8(file) << std::endl;
    return out.good() ? custom_section_added : custom_section_file_error;
}

}  // namespace norvane_1
