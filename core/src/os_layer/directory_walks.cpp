// The uses of the directory walk. Portable code only.
#include <norvane_1/os_layer.h>

namespace norvane_1 {
namespace os_layer {
namespace {

constexpr wchar_t kTagFileName[] = L"norvane.tag";

class RemoveEverything : public forEachDirItemCallback {
public:
    bool operator()(std::wstring const& path) override {
        if (isDirectory(path)) {
            RemoveEverything inner;
            if (forEachDirItem(path, inner)) removeDirectory(path);
        } else {
            deleteFile(path);
        }
        return true;
    }
};

}  // namespace

forEachDirItemCallback::~forEachDirItemCallback() = default;

bool enumDirContent(std::wstring const& directory, std::vector<std::wstring>& items) {
    struct Function : forEachDirItemCallback {
        explicit Function(std::vector<std::wstring>& out) : items(out) {}
        bool operator()(std::wstring const& path) override {
            items.push_back(path);
            return true;
        }
        std::vector<std::wstring>& items;
    } collect(items);
    return forEachDirItem(directory, collect);
}

bool enumDirs(std::wstring const& directory, std::vector<std::wstring>& items) {
    struct Function : forEachDirItemCallback {
        explicit Function(std::vector<std::wstring>& out) : items(out) {}
        bool operator()(std::wstring const& path) override {
            if (isDirectory(path)) items.push_back(path);
            return true;
        }
        std::vector<std::wstring>& items;
    } collect(items);
    return forEachDirItem(directory, collect);
}

void removeDirRecursively(std::wstring const& directory) {
    RemoveEverything remove;
    if (forEachDirItem(directory, remove)) removeDirectory(directory);
}

bool removeTaggedDirectory(std::wstring const& directory) {
    if (getFileModificationTime(addTrailingSeparator(directory) + kTagFileName) == -1) return false;
    removeDirRecursively(directory);
    return true;
}

std::wstring getTagFileName() { return kTagFileName; }

}  // namespace os_layer
}  // namespace norvane_1
