#include "test_environment.h"

#include <atomic>
#include <chrono>
#include <system_error>

namespace norvane_test {

ScopedVariable::ScopedVariable(std::string name, std::string const& value)
    : m_name(std::move(name)), m_former(getVariable(m_name)) {
    setVariable(m_name, value);
}

ScopedVariable::~ScopedVariable() { setVariable(m_name, m_former); }

ScratchDirectory::ScratchDirectory(std::string const& tag) {
    static std::atomic<unsigned> counter{0};
    auto const stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    m_path = std::filesystem::temp_directory_path() /
             ("norvane-test-" + tag + "-" + std::to_string(stamp) + "-" + std::to_string(counter++));
    std::filesystem::create_directories(m_path);
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::wstring ScratchDirectory::withSeparator() const { return (m_path / "").make_preferred().wstring(); }

}  // namespace norvane_test
