// The custom-section list: one reader, one writer. Portable code only.
#include "custom_section_list.h"

#include "os_layer/text_files.h"

#include <vantix_2_18/utf.h>

#include <algorithm>
#include <fstream>

namespace norvane_1 {
namespace internal {
namespace {

bool names(CustomSectionList const& list, std::wstring const& name) {
    return std::any_of(list.begin(), list.end(), [&name](auto const& entry) { return entry.first == name; });
}

}  // namespace

bool readCustomSectionList(std::wstring const& folder, CustomSectionList& list) {
    std::ifstream in;
    os_layer::openTextFile(in, folder + kCustomSectionListName, std::ios::in);
    if (!in) return false;
    std::string name;
    std::string path;
    while (in) {
        name.clear();
        path.clear();
        std::getline(in, name);
        std::getline(in, path);
        if (!name.empty() && !path.empty()) {
            list.emplace_back(VANTIX_2_18::utf::from_utf8(name), VANTIX_2_18::utf::from_utf8(path));
        }
    }
    return true;
}

ListAddition addToCustomSectionList(std::wstring const& folder, std::wstring const& name, std::wstring const& path) {
    std::wstring const listPath = folder + kCustomSectionListName;
    {
        // Creates the list when it is missing, so that reading it can't fail
        // for that reason alone.
        std::ofstream create;
        os_layer::openTextFile(create, listPath, std::ios::out | std::ios::app);
        if (!create) return ListAddition::fileError;
    }
    CustomSectionList list;
    if (!readCustomSectionList(folder, list)) return ListAddition::fileError;
    if (names(list, name)) return ListAddition::nameTaken;

    // Name and path in one write: two programs, or two threads, adding at
    // once must not interleave their pairs.
    bool const added = os_layer::appendLines(listPath,
                                             {VANTIX_2_18::utf::to_utf8(name), VANTIX_2_18::utf::to_utf8(path)});
    return added ? ListAddition::added : ListAddition::fileError;
}

}  // namespace internal
}  // namespace norvane_1
