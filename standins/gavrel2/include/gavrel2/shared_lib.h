// Run-time loading of a shared library, as the general helper library does it.
#pragma once

#include <gavrel2/path.h>

#include <string>

namespace gavrel2 {

class shared_lib_t {
public:
    shared_lib_t() = default;
    ~shared_lib_t() { uninitialize(); }
    shared_lib_t(shared_lib_t const&) = delete;
    shared_lib_t& operator=(shared_lib_t const&) = delete;

    // Loads `name` from `directory`; the system's extension (".dll", ".so")
    // is added here. False if it can't be loaded.
    bool initialize(std::wstring const& name, path_t const& directory);
    void uninitialize();
    explicit operator bool() const { return m_handle != nullptr; }
    // An entry point's address, or null.
    void* get_symbol(std::wstring const& name) const;

private:
    void* m_handle = nullptr;
};

}  // namespace gavrel2
