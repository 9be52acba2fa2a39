// A HandlerState for tests of the crash work, with the on-demand operations
// (which such tests never reach) doing nothing.
#pragma once

#include <norvane_1/handler_state.h>

namespace norvane_test {

class PlainHandlerState : public norvane_1::HandlerState {
public:
    bool collectSendInfo(bool, unsigned long, wchar_t const*) override { return false; }
    std::wstring collectReport(bool, unsigned long, wchar_t const*, bool) override { return {}; }
    bool terminateProduct() override { return false; }
};

}  // namespace norvane_test
