// Environment variables and scratch directories for tests.
#pragma once

#include <filesystem>
#include <string>

namespace norvane_test {

// Sets a variable of this process (an empty value unsets it), for the
// library and for children started later.
void setVariable(std::string const& name, std::string const& value);
std::string getVariable(std::string const& name);

// Sets a variable for the scope's lifetime and restores the former value.
class ScopedVariable {
public:
    ScopedVariable(std::string name, std::string const& value);
    ~ScopedVariable();
    ScopedVariable(ScopedVariable const&) = delete;
    ScopedVariable& operator=(ScopedVariable const&) = delete;

private:
    std::string m_name;
    std::string m_former;
};

// A new empty directory under the system's temporary directory, removed
// with everything in it when the object goes.
class ScratchDirectory {
public:
    explicit ScratchDirectory(std::string const& tag);
    ~ScratchDirectory();
    ScratchDirectory(ScratchDirectory const&) = delete;
    ScratchDirectory& operator=(ScratchDirectory const&) = delete;

    std::filesystem::path const& path() const { return m_path; }
    // The directory with a trailing separator, as the library wants it.
    std::wstring withSeparator() const;

private:
    std::filesystem::path m_path;
};

}  // namespace norvane_test
