// Key text: the "Key: value" lines of a section. Portable code only.
#include <norvane_1/string_traits.h>

#include "key_text.h"
#include "regex_text.h"

#include <algorithm>

namespace norvane_1 {
namespace {

// A key is a word character followed by word characters and blanks; group 2
// is the white space between the colon and the value, line breaks included.
boost::wregex const& keyExpression() {
    static boost::wregex const expression = internal::readerExpression(L"^([\\w][\\w ]*):([\\s\\r\\n]*)");
    return expression;
}

// Without known keys a value ends where a line begins with a word character.
boost::wregex const& singleLineEndExpression() {
    static boost::wregex const expression = internal::readerExpression(L"\\r?\\n[\\w]");
    return expression;
}

// With known keys a value ends at an empty line or at a line that begins with
// one of them. The keys go into the expression as they are, unescaped.
std::wstring multiLineEndExpression(std::vector<std::wstring> const& keys) {
    std::wstring expression = L"(\\r?\\n){2}";
    for (auto const& key : keys) expression += L"|[\\r\\n]+" + key + L":";
    return expression;
}

std::wstring withoutLineBreaks(std::wstring value) {
    value.erase(std::remove_if(value.begin(), value.end(), [](wchar_t c) { return c == L'\r' || c == L'\n'; }),
                value.end());
    return value;
}

void readKeyLines(std::wstring const& text, StringMap& out, boost::wregex const& endExpression, bool joinLines) {
    internal::TextIterator position = text.begin();
    internal::TextIterator const end = text.end();
    internal::TextMatch key;
    internal::TextMatch valueEnd;
    while (position != end) {
        if (!boost::regex_search(position, end, key, keyExpression())) return;
        std::wstring const name = internal::trim(key.str(1));
        internal::TextIterator const valueBegin = key[2].first;
        internal::TextIterator valueLast = end;
        if (boost::regex_search(valueBegin, end, valueEnd, endExpression)) {
            valueLast = valueEnd[0].first;
        }
        position = valueLast;
        std::wstring value(valueBegin, valueLast);
        if (joinLines) value = withoutLineBreaks(std::move(value));
        out[name] = internal::trim(value);
    }
}

}  // namespace

std::wstring get(StringMap const& map, std::wstring const& key) {
    auto const found = map.find(key);
    return found == map.end() ? std::wstring() : found->second;
}

std::wstring processMapToSection(StringMap const& map) {
    std::wstring text;
    for (auto const& entry : map) {
        text += entry.first;
        text += L": ";
        text += entry.second;
        text += L'\n';
    }
    return text;
}

void processSectionToMap(std::wstring const& text, StringMap& out, std::vector<std::wstring> const& multiLineKeys) {
    internal::KnownKeys(multiLineKeys).read(text, out);
}

namespace internal {

KnownKeys::KnownKeys(std::vector<std::wstring> const& keys) : m_joinLines(!keys.empty()), m_valid(true) {
    if (keys.empty()) return;
    try {
        internal::assignReaderExpression(m_valueEnd, multiLineEndExpression(keys));
    } catch (boost::regex_error const&) {
        m_valid = false;
    }
}

void KnownKeys::read(std::wstring const& text, StringMap& out) const {
    if (!m_valid) return;
    try {
        readKeyLines(text, out, m_joinLines ? m_valueEnd : singleLineEndExpression(), m_joinLines);
    } catch (boost::regex_error const&) {
        // A match too complex to finish: the map keeps what was read so far.
    }
}

}  // namespace internal
}  // namespace norvane_1
