#include "loaded_modules.h"

#include <istream>
#include <ostream>
#include <sstream>

namespace norvane_test {

void writeModules(std::ostream& out, std::vector<LoadedModule> const& modules) {
    for (auto const& module : modules) {
        out << std::hex << module.base << ' ' << module.size << std::dec << ' ' << module.hasCode << ' '
            << module.path << '\n';
    }
    out << "end" << std::endl;
}

bool readModules(std::istream& in, std::vector<LoadedModule>& modules) {
    modules.clear();
    std::string line;
    while (std::getline(in, line)) {
        if (line == "end" || line == "end\r") return true;
        std::istringstream fields(line);
        LoadedModule module;
        fields >> std::hex >> module.base >> module.size >> std::dec >> module.hasCode;
        std::getline(fields >> std::ws, module.path);
        if (!module.path.empty() && module.path.back() == '\r') module.path.pop_back();
        modules.push_back(module);
    }
    return false;
}

}  // namespace norvane_test
