// The heap of the module map: entry storage and name copies, all of it
// malloc'd so that a foreign library can release names with free.
//
// Tests swap the allocator to make the heap run out at a chosen moment;
// nothing else may call setAllocatorForTesting.
#pragma once

#include <cstddef>

namespace norvane_1 {
namespace map_heap {

// malloc, or the test's allocator. Null when the heap is exhausted.
void* allocate(std::size_t bytes);
// A heap copy of `text` that free releases; null for a null text or when
// the heap is exhausted.
wchar_t* duplicate(wchar_t const* text);

using Allocator = void* (*)(std::size_t bytes);
// Null restores malloc. Whatever the allocator returns must be freeable
// with free.
void setAllocatorForTesting(Allocator allocator);

}  // namespace map_heap
}  // namespace norvane_1
