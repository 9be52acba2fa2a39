#include "regex_text.h"

#include <boost/algorithm/string/trim.hpp>

namespace norvane_1 {
namespace internal {
namespace {

// The escape table, in both directions. "\n" in the decode format is a real
// line feed; the conditional groups keep each replacement to its own match.
constexpr wchar_t kEncodeExpression[] = L"(\\r\\n|\\r|\\n)|( )|(&(?!amp;))";
constexpr wchar_t kEncodeFormat[] = L"(?1<br>)(?2&nbsp;)(?3&amp;)";
constexpr wchar_t kDecodeExpression[] = L"(<br>)|(&nbsp;)|(&amp;)";
constexpr wchar_t kDecodeFormat[] = L"(?1\n)(?2 )(?3&)";

}  // namespace

std::wstring replaceAllByRegex(std::wstring const& text, boost::wregex const& expression, std::wstring const& format) {
    try {
        return boost::regex_replace(text, expression, format, boost::match_default | boost::format_all);
    } catch (boost::regex_error const&) {
        return std::wstring();
    }
}

void imbueReaderLocale(boost::wregex& expression);  // regex_locale_*.cpp

void assignReaderExpression(boost::wregex& expression, std::wstring const& pattern) {
    imbueReaderLocale(expression);
    expression.assign(pattern);
}

boost::wregex readerExpression(std::wstring const& pattern) {
    boost::wregex expression;
    assignReaderExpression(expression, pattern);
    return expression;
}

std::wstring encodeText(std::wstring const& text) {
    static boost::wregex const expression(kEncodeExpression);
    return replaceAllByRegex(text, expression, kEncodeFormat);
}

std::wstring decodeText(std::wstring const& text) {
    static boost::wregex const expression(kDecodeExpression);
    return replaceAllByRegex(text, expression, kDecodeFormat);
}

namespace {

// Printable ASCII is never white space, whatever the locale.
bool isPrintableAscii(wchar_t c) { return c > L' ' && c < 0x7F; }

}  // namespace

std::wstring trim(std::wstring const& text) {
    // Most values have nothing to trim; that case needs no locale lookups.
    if (text.empty() || (isPrintableAscii(text.front()) && isPrintableAscii(text.back()))) return text;
    return boost::algorithm::trim_copy(text);
}

}  // namespace internal
}  // namespace norvane_1
