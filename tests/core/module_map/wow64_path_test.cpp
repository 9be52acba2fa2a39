// The component replacement of the 32-bit path correction.
#include "module_map/wow64_path.h"

#include <gtest/gtest.h>

namespace norvane_test {
namespace {

TEST(Wow64Path, ReplacesTheFirstSystem32Component) {
    struct Case {
        wchar_t const* path;
        wchar_t const* corrected;  // null: no replacement
    };
    for (Case const& c : std::vector<Case>{
             {L"C:\\Windows\\System32\\kernel32.dll", L"C:\\Windows\\SysWOW64\\kernel32.dll"},
             {L"C:\\WINDOWS\\SYSTEM32\\ntdll.dll", L"C:\\WINDOWS\\SysWOW64\\ntdll.dll"},
             {L"C:\\a\\system32\\b\\System32\\x.dll", L"C:\\a\\SysWOW64\\b\\System32\\x.dll"},
             {L"C:\\Windows\\System32x\\x.dll", nullptr},
             {L"C:\\Windows\\xSystem32\\x.dll", nullptr},
             {L"C:\\Windows\\x.dll", nullptr},
             {L"", nullptr},
         }) {
        std::wstring path = c.path;
        bool const replaced = norvane_1::replaceSystem32Component(path);
        EXPECT_EQ(replaced, c.corrected != nullptr) << std::string(path.begin(), path.end());
        EXPECT_EQ(path, c.corrected ? c.corrected : c.path);
    }
}

}  // namespace
}  // namespace norvane_test
