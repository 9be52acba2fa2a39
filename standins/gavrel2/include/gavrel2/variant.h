// The value type of the general helper library: empty, a boolean, an integer,
// a floating-point number or a wide text. Header-only, because it appears in
// the crash library's public interface (application properties).
#pragma once

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <variant>

namespace gavrel2 {

class variant_t {
public:
    variant_t() = default;
    variant_t(bool value) : m_value(value) {}
    variant_t(int value) : m_value(static_cast<std::int64_t>(value)) {}
    variant_t(long value) : m_value(static_cast<std::int64_t>(value)) {}
    variant_t(long long value) : m_value(static_cast<std::int64_t>(value)) {}
    variant_t(unsigned value) : m_value(static_cast<std::uint64_t>(value)) {}
    variant_t(unsigned long value) : m_value(static_cast<std::uint64_t>(value)) {}
    variant_t(unsigned long long value) : m_value(static_cast<std::uint64_t>(value)) {}
    variant_t(float value) : m_value(static_cast<double>(value)) {}
    variant_t(double value) : m_value(value) {}
    variant_t(std::wstring value) : m_value(std::move(value)) {}
    variant_t(wchar_t const* value) : m_value(std::wstring(value ? value : L"")) {}

    bool empty() const { return std::holds_alternative<std::monostate>(m_value); }
    bool is_text() const { return std::holds_alternative<std::wstring>(m_value); }

    // The text form: "" for empty, "true"/"false", decimal integers, and
    // floating point with up to 15 significant digits ("0.1", "3.25", "1e+20").
    std::wstring as_wstring() const { return std::visit(TextForm{}, m_value); }

    friend bool operator==(variant_t const& a, variant_t const& b) { return a.m_value == b.m_value; }
    friend bool operator!=(variant_t const& a, variant_t const& b) { return !(a == b); }

private:
    struct TextForm {
        std::wstring operator()(std::monostate) const { return std::wstring(); }
        std::wstring operator()(bool v) const { return v ? L"true" : L"false"; }
        std::wstring operator()(std::int64_t v) const { return std::to_wstring(v); }
        std::wstring operator()(std::uint64_t v) const { return std::to_wstring(v); }
        std::wstring operator()(double v) const {
            std::wostringstream out;
            out << std::setprecision(15) << v;
            return out.str();
        }
        std::wstring operator()(std::wstring const& v) const { return v; }
    };

    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::wstring> m_value;
};

// A variant of text kind holding the text form of `value`.
inline variant_t get_value_string(variant_t const& value) { return variant_t(value.as_wstring()); }

}  // namespace gavrel2
