// The module map's heap: the allocator it uses, set once. Portable code only.
#include "map_heap.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace norvane_1 {
namespace map_heap {
namespace {

std::atomic<Allocator> g_allocator{nullptr};

}  // namespace

void* allocate(std::size_t bytes) {
    Allocator const allocator = g_allocator.load(std::memory_order_relaxed);
    return allocator ? allocator(bytes) : std::malloc(bytes);
}

wchar_t* duplicate(wchar_t const* text) {
    if (text == nullptr) return nullptr;
    std::size_t const bytes = (std::wcslen(text) + 1) * sizeof(wchar_t);
    void* copy = allocate(bytes);
    if (copy != nullptr) std::memcpy(copy, text, bytes);
    return static_cast<wchar_t*>(copy);
}

void setAllocatorForTesting(Allocator allocator) { g_allocator.store(allocator, std::memory_order_relaxed); }

}  // namespace map_heap
}  // namespace norvane_1
