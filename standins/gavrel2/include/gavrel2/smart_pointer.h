// The general helper library's plain reference-counted smart pointer, for
// objects that know nothing of counting (compare sptr_t, for interfaces
// that count themselves). Header-only.
//
//   gavrel2::smart_pointer_t<Task> task(new Task);
//   gavrel2::smart_pointer_t<Task> second = task;   // both own it
//   task.reset();                                   // second still does
#pragma once

#include <memory>
#include <utility>

namespace gavrel2 {

template <typename T>
class smart_pointer_t {
public:
    smart_pointer_t() = default;
    explicit smart_pointer_t(T* object) : m_ptr(object) {}
    // `release` is called with the object when the last owner lets go.
    template <typename Release>
    smart_pointer_t(T* object, Release release) : m_ptr(object, std::move(release)) {}

    void reset() { m_ptr.reset(); }
    T* get() const { return m_ptr.get(); }
    T* operator->() const { return m_ptr.get(); }
    T& operator*() const { return *m_ptr; }
    explicit operator bool() const { return m_ptr != nullptr; }

private:
    std::shared_ptr<T> m_ptr;
};

}  // namespace gavrel2
