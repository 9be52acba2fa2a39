// Reference-counted interfaces of the general helper library, and the smart
// pointer that holds them. Header-only.
//
// An interface derives from ref_counted_t, whose two operations come first
// on every such interface: add_ref, then release. An object is made with a
// count of 1, which the first sptr_t takes over (sptr_t::adopt); release of
// the last reference deletes it.
//
//   gavrel2::sptr_t<IThing> thing = gavrel2::sptr_t<IThing>::adopt(new Thing);
//   gavrel2::sptr_t<IThing> second = thing;   // count 2
#pragma once

#include <atomic>
#include <utility>

namespace gavrel2 {

class ref_counted_t {
public:
    virtual void add_ref() = 0;
    virtual void release() = 0;

protected:
    ~ref_counted_t() = default;
};

// The count behind an interface: derive the implementation from this.
template <typename Interface>
class ref_counted_impl_t : public Interface {
public:
    void add_ref() override { m_count.fetch_add(1, std::memory_order_relaxed); }
    void release() override {
        if (m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

protected:
    virtual ~ref_counted_impl_t() = default;

private:
    std::atomic<long> m_count{1};
};

template <typename T>
class sptr_t {
public:
    sptr_t() = default;
    // Takes over the reference the caller holds (a new object's first one).
    static sptr_t adopt(T* object) {
        sptr_t pointer;
        pointer.m_object = object;
        return pointer;
    }
    sptr_t(sptr_t const& other) : m_object(other.m_object) {
        if (m_object) m_object->add_ref();
    }
    sptr_t(sptr_t&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    sptr_t& operator=(sptr_t other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~sptr_t() { reset(); }

    void reset() {
        if (m_object) std::exchange(m_object, nullptr)->release();
    }
    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    T* m_object = nullptr;
};

}  // namespace gavrel2
