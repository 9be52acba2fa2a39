// The exported members of the report records. Portable code only.
#include <norvane_1/report_records.h>

namespace norvane_1 {

ModuleInfo::ModuleInfo() = default;
ModuleInfo::ModuleInfo(ModuleInfo const& other) = default;
ModuleInfo::~ModuleInfo() = default;
ModuleInfo& ModuleInfo::operator=(ModuleInfo const& other) = default;

bool ModuleInfo::operator==(ModuleInfo const& other) const {
    return FullName == other.FullName && SymbolName == other.SymbolName && Base == other.Base && Begin == other.Begin &&
           End == other.End && Timestamp == other.Timestamp && Size == other.Size;
}

}  // namespace norvane_1
