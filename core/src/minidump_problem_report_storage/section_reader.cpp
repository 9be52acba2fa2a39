// Finding sections in report text. Portable code only.
#include <norvane_1/problem_report_storage.h>

#include "regex_text.h"

namespace norvane_1 {
namespace {

// A head is "[Name]" with a line break directly in front of "[" and behind
// "]". Group 2 is the line break behind the head, so a search from there can
// find a head that follows directly.
boost::wregex const& headExpression() {
    static boost::wregex const expression(L"[\\n\\r]+[[]([\\w \\.]+)[]]([\\n\\r]+)");
    return expression;
}

boost::wregex const& anyHeadStartExpression() {
    static boost::wregex const expression(L"[\\n\\r][[]");
    return expression;
}

}  // namespace

std::wstring::const_iterator ProblemReportStorage::findNextSection(
    std::wstring::const_iterator start, std::wstring& name, std::wstring& text,
    std::wstring const& reportText) {
    name.clear();
    text.clear();
    auto const end = reportText.end();
    try {
        internal::TextMatch head;
        if (!boost::regex_search(start, end, head, headExpression())) return end;
        name = head.str(1);
        internal::TextMatch next;
        auto result = end;
        if (boost::regex_search(head[2].first, end, next, headExpression())) {
            // A head right behind this one leaves this section empty.
            if (head[0].second < next[0].first) text.assign(head[0].second, next[0].first);
            result = next[0].first;
        } else {
            text.assign(head[2].first, end);
        }
        name = internal::trim(name);
        text = internal::trimLineEnds(text);
        return result;
    } catch (boost::regex_error const&) {
        return end;
    }
}

std::wstring ProblemReportStorage::getSection(std::wstring const& name,
                                              std::wstring const& reportText) const {
    try {
        // The name goes into the expression unescaped.
        boost::wregex const named(L"[\\n\\r][[][\\s]*" + name + L"[ \\s]*[]]");
        internal::TextMatch head;
        if (!boost::regex_search(reportText.begin(), reportText.end(), head, named)) {
            return std::wstring();
        }
        internal::TextMatch next;
        auto last = reportText.end();
        if (boost::regex_search(head[0].second, reportText.end(), next, anyHeadStartExpression())) {
            last = next[0].first;
        }
        return std::wstring(head[0].second, last);
    } catch (boost::regex_error const&) {
        return std::wstring();
    }
}

}  // namespace norvane_1
