// The debug identity -show-report prints for a frame without symbols: what a
// person takes to find the module's debug file.
#include "module_identity.h"

#include <gtest/gtest.h>

namespace {

norvane_1::ModuleInfo moduleWith(wchar_t const* fullName, norvane_1::Guid const& guid, std::uint64_t age) {
    norvane_1::ModuleInfo module;
    module.FullName = fullName;
    module.Guid = guid;
    module.Age = age;
    return module;
}

// The report's GUID of libc.so.6 from a real crash: its build id is
// 93ac61ec5a8eb1396f9fbd350e3169a558528a40, the name of its debug file.
norvane_1::Guid const kLibcGuid{0xec61ac93, 0x8e5a, 0x39b1, {0x6f, 0x9f, 0xbd, 0x35, 0x0e, 0x31, 0x69, 0xa5}};

TEST(ModuleIdentity, IsTheBuildIdInFileOrderOrTheGuidAndAge) {
    EXPECT_EQ(kelmur_feedback::debugIdentity(moduleWith(L"/usr/lib/x86_64-linux-gnu/libc.so.6", kLibcGuid, 0)),
              "build id 93ac61ec5a8eb1396f9fbd350e3169a5");
    EXPECT_EQ(kelmur_feedback::debugIdentity(moduleWith(L"C:\\app\\app.dll", kLibcGuid, 2)),
              "guid ec61ac93-8e5a-39b1-6f9f-bd350e3169a5 age 2");
    EXPECT_EQ(kelmur_feedback::debugIdentity(moduleWith(L"/opt/app/bin/app", {}, 0)), "no debug identity");
}

}  // namespace
