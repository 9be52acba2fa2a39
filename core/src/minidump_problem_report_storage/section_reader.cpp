// Finding sections in report text. Portable code only; no I/O.
#include "section_text.h"

#include "regex_text.h"

#include <algorithm>

namespace norvane_1 {
namespace internal {
namespace {

// A head is "[Name]" with a line break directly in front of "[" and behind
// "]". Group 2 is the line break behind the head, so a search from there can
// find a head that follows directly.
boost::wregex const& headExpression() {
    static boost::wregex const expression = readerExpression(L"[\\n\\r]+[[]([\\w \\.]+)[]]([\\n\\r]+)");
    return expression;
}

bool isLineEnd(wchar_t c) { return c == L'\r' || c == L'\n'; }

// The same match as regex_search of the head expression over [first, last),
// found faster: a head can only begin with a run of line ends that a "["
// follows, and then only at the run's first character, since a later start
// in the run reaches the same "[" with the same rest. Trying the expression
// at those places alone keeps it from being attempted at every line end of a
// long stack section.
bool searchHead(TextIterator first, TextIterator last, TextMatch& head) {
    for (auto bracket = std::find(first, last, L'['); bracket != last; bracket = std::find(bracket + 1, last, L'[')) {
        if (bracket == first || !isLineEnd(*(bracket - 1))) continue;
        auto runStart = bracket - 1;
        while (runStart != first && isLineEnd(*(runStart - 1))) --runStart;
        if (boost::regex_search(runStart, last, head, headExpression(), boost::match_continuous)) {
            return true;
        }
    }
    return false;
}

// The text between `first` and `last` without CR and LF at either end.
void assignWithoutLineEnds(std::wstring& text, TextIterator first, TextIterator last) {
    while (first != last && isLineEnd(*first)) ++first;
    while (last != first && isLineEnd(*(last - 1))) --last;
    text.assign(first, last);
}

}  // namespace

std::wstring::const_iterator nextSection(std::wstring const& text, std::wstring::const_iterator start,
                                         std::wstring& name, std::wstring& body) {
    name.clear();
    body.clear();
    auto const end = text.end();
    try {
        TextMatch head;
        if (!searchHead(start, end, head)) return end;
        name = head.str(1);
        TextMatch next;
        auto result = end;
        if (searchHead(head[2].first, end, next)) {
            // A head right behind this one leaves this section empty.
            if (head[0].second < next[0].first) assignWithoutLineEnds(body, head[0].second, next[0].first);
            result = next[0].first;
        } else {
            assignWithoutLineEnds(body, head[2].first, end);
        }
        name = trim(name);
        return result;
    } catch (boost::regex_error const&) {
        return end;
    }
}

void splitSections(std::wstring const& text, StringMap& sections) {
    // The line feed in front lets the head expression find a head on the
    // first line.
    std::wstring const searched = L"\n" + text;
    std::wstring name;
    std::wstring body;
    for (auto position = searched.cbegin(); position != searched.cend();) {
        position = nextSection(searched, position, name, body);
        if (!name.empty()) sections[name] = std::move(body);
    }
}

}  // namespace internal
}  // namespace norvane_1
