// The helper object: the modules it is told of and the walk of one stack.
// Portable code only.
#include <backtrace/bt_helper.h>

#include "frame_unwinder.h"
#include "module_ranges.h"
#include "stack_walk.h"

#include <memory>
#include <new>

namespace bt {
namespace {

constexpr int kThisProcess = 0;
constexpr int kBits64 = 2;

class BtHelper final : public gavrel2::ref_counted_impl_t<IBtHelper> {
public:
    void prepare(int mode) override {
        if (mode == kThisProcess) m_unwinder = createLocalUnwinder();
    }
    bool isReady() override { return m_unwinder != nullptr; }

    bool walkStack(int bitness, norvane_1::Context registers, norvane_1::RawStack rawStack,
                   norvane_1::CleanStack& frames) override {
        if (bitness != kBits64 || !m_unwinder) return false;
        return bt::walkStack(*m_unwinder, m_modules, registers, rawStack, frames);
    }

    gavrel2::sptr_t<IBtModule> createModule() override;

    ModuleRanges& modules() { return m_modules; }

private:
    std::unique_ptr<FrameUnwinder> m_unwinder;
    ModuleRanges m_modules;
};

// Keeps its helper alive for as long as it may be described.
class BtModule final : public gavrel2::ref_counted_impl_t<IBtModule> {
public:
    explicit BtModule(gavrel2::sptr_t<BtHelper> helper) : m_helper(std::move(helper)) {}

    void describe(std::uint64_t loadAddress, std::uint64_t rangeEnd, std::uint64_t rangeBegin, wchar_t const* path,
                  int /*kind: code*/) override {
        m_helper->modules().add(rangeBegin != 0 ? rangeBegin : loadAddress, rangeEnd, path ? path : L"");
    }

private:
    gavrel2::sptr_t<BtHelper> m_helper;
};

gavrel2::sptr_t<IBtModule> BtHelper::createModule() {
    add_ref();
    auto self = gavrel2::sptr_t<BtHelper>::adopt(this);
    return gavrel2::sptr_t<IBtModule>::adopt(new BtModule(std::move(self)));
}

}  // namespace

gavrel2::sptr_t<IBtHelper> createBtHelper() { return gavrel2::sptr_t<IBtHelper>::adopt(new BtHelper()); }

}  // namespace bt
