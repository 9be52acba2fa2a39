// Finding sections in report text. Portable code only.
#include <norvane_1/problem_report_storage.h>

#include "regex_text.h"

#include <algorithm>

namespace norvane_1 {
namespace {

// A head is "[Name]" with a line break directly in front of "[" and behind
// "]". Group 2 is the line break behind the head, so a search from there can
// find a head that follows directly.
boost::wregex const& headExpression() {
    static boost::wregex const expression = internal::readerExpression(L"[\\n\\r]+[[]([\\w \\.]+)[]]([\\n\\r]+)");
    return expression;
}

bool isLineEnd(wchar_t c) { return c == L'\r' || c == L'\n'; }

// The same match as regex_search of the head expression over [first, last),
// found faster: a head can only begin with a run of line ends that a "["
// follows, and then only at the run's first character, since a later start
// in the run reaches the same "[" with the same rest. Trying the expression
// at those places alone keeps it from being attempted at every line end of a
// long stack section.
bool searchHead(internal::TextIterator first, internal::TextIterator last, internal::TextMatch& head) {
    for (auto bracket = std::find(first, last, L'['); bracket != last;
         bracket = std::find(bracket + 1, last, L'[')) {
        if (bracket == first || !isLineEnd(*(bracket - 1))) continue;
        auto runStart = bracket - 1;
        while (runStart != first && isLineEnd(*(runStart - 1))) --runStart;
        if (boost::regex_search(runStart, last, head, headExpression(), boost::match_continuous)) {
            return true;
        }
    }
    return false;
}

boost::wregex const& anyHeadStartExpression() {
    static boost::wregex const expression(L"[\\n\\r][[]");
    return expression;
}

// The text between `first` and `last` without CR and LF at either end.
void assignWithoutLineEnds(std::wstring& text, internal::TextIterator first, internal::TextIterator last) {
    while (first != last && isLineEnd(*first)) ++first;
    while (last != first && isLineEnd(*(last - 1))) --last;
    text.assign(first, last);
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
        if (!searchHead(start, end, head)) return end;
        name = head.str(1);
        internal::TextMatch next;
        auto result = end;
        if (searchHead(head[2].first, end, next)) {
            // A head right behind this one leaves this section empty.
            if (head[0].second < next[0].first) assignWithoutLineEnds(text, head[0].second, next[0].first);
            result = next[0].first;
        } else {
            assignWithoutLineEnds(text, head[2].first, end);
        }
        name = internal::trim(name);
        return result;
    } catch (boost::regex_error const&) {
        return end;
    }
}

std::wstring ProblemReportStorage::getSection(std::wstring const& name,
                                              std::wstring const& reportText) const {
    try {
        // The name goes into the expression unescaped.
        boost::wregex const named = internal::readerExpression(L"[\\n\\r][[][\\s]*" + name + L"[ \\s]*[]]");
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
