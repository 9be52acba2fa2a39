// Reading key text with a fixed list of known keys. Portable code only.
#pragma once

#include <norvane_1/report_records.h>

#include <boost/regex.hpp>

#include <string>
#include <vector>

namespace norvane_1 {
namespace internal {

// A list of known keys with its value-end expression compiled once. The
// codecs whose key lists are constants keep one of these, so that reading a
// report with hundreds of module sections doesn't compile the same expression
// hundreds of times. Reading with it is the same as processSectionToMap with
// the list.
class KnownKeys {
public:
    explicit KnownKeys(std::vector<std::wstring> const& keys);

    // Adds the key lines of `text` to `out`, as processSectionToMap does.
    void read(std::wstring const& text, StringMap& out) const;

private:
    bool m_joinLines;
    bool m_valid;  // false when a key breaks the expression: nothing is read
    boost::wregex m_valueEnd;
};

}  // namespace internal
}  // namespace norvane_1
