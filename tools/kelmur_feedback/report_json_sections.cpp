#include "report_json_sections.h"

#include <norvane_1/string_traits.h>

#include <vantix_2_18/utf.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace kelmur_feedback {
namespace {

constexpr std::wstring_view kKeyDivider = L": ";
constexpr std::wstring_view kColumnDivider = L" | ";
constexpr std::size_t kMostDecimalDigits = 19;  // any 19 digits fit 64 bits

struct FrameKind {
    wchar_t const* column;
    char const* word;
};

// The kind column of a clean stack, in words a reader needs no table for.
constexpr FrameKind kFrameKinds[] = {{L"!", "fault"}, {L"+", "unwound"}, {L"?", "scanned"}, {L"-", "unknown"}};

bool listed(std::vector<std::wstring> const& keys, std::wstring const& key) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

// The lines of a body; a line feed that ends the body ends its last line.
std::vector<std::wstring> linesOf(std::wstring body) {
    std::vector<std::wstring> lines;
    if (body.empty()) return lines;
    if (body.back() == L'\n') body.pop_back();
    std::wstring::size_type start = 0;
    for (auto end = body.find(L'\n'); end != std::wstring::npos; end = body.find(L'\n', start)) {
        lines.push_back(body.substr(start, end - start));
        start = end + 1;
    }
    lines.push_back(body.substr(start));
    return lines;
}

bool writesBack(std::wstring const& body, std::wstring const& written) {
    return written == body || written + L"\n" == body;
}

// Lines are written each with its line feed; the body ends without one.
std::wstring withoutLastLineFeed(std::wstring text) {
    if (!text.empty() && text.back() == L'\n') text.pop_back();
    return text;
}

// Splits at the first `count` dividers, or at as many as there are.
std::vector<std::wstring> split(std::wstring const& line, std::wstring_view divider, std::size_t count) {
    std::vector<std::wstring> pieces;
    std::wstring::size_type start = 0;
    for (auto at = line.find(divider); at != std::wstring::npos && pieces.size() < count;
         at = line.find(divider, start)) {
        pieces.push_back(line.substr(start, at - start));
        start = at + divider.size();
    }
    pieces.push_back(line.substr(start));
    return pieces;
}

bool isCanonicalDecimal(std::wstring const& text) {
    if (text.empty() || text.size() > kMostDecimalDigits || (text[0] == L'0' && text.size() > 1)) return false;
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; });
}

Json valueToJson(std::wstring const& key, std::wstring const& value, KeyForms const& forms) {
    if (listed(forms.escaped, key)) return toUtf8(norvane_1::string_traits::decodeString(value));
    if (listed(forms.decimal, key) && isCanonicalDecimal(value)) return std::stoull(toUtf8(value));
    return toUtf8(value);
}

std::wstring valueFromJson(std::wstring const& key, Json const& value, KeyForms const& forms) {
    if (value.is_number_unsigned()) return std::to_wstring(value.get<std::uint64_t>());
    if (!value.is_string()) {
        throw ReportJsonError("the value of '" + toUtf8(key) + "' is neither text nor a whole number");
    }
    std::wstring const text = fromUtf8(value.get<std::string>());
    return listed(forms.escaped, key) ? norvane_1::string_traits::encodeString(text) : text;
}

std::string const& stringMember(Json const& object, char const* name) {
    if (!object.is_object() || !object.contains(name) || !object[name].is_string()) {
        throw ReportJsonError(std::string("a stack entry lacks its text member '") + name + "'");
    }
    return object[name].get_ref<std::string const&>();
}

Json const& array(Json const& value, char const* what) {
    if (!value.is_array()) throw ReportJsonError(std::string(what) + " must be an array");
    return value;
}

}  // namespace

std::string toUtf8(std::wstring const& text) { return VANTIX_2_18::utf::to_utf8(text); }
std::wstring fromUtf8(std::string const& text) { return VANTIX_2_18::utf::from_utf8(text); }

std::optional<Json> keyLinesToJson(std::wstring const& body, KeyForms const& forms) {
    Json object = Json::object();
    for (auto const& line : linesOf(body)) {
        auto const pieces = split(line, kKeyDivider, 1);
        if (pieces.size() != 2) return std::nullopt;
        std::string const key = toUtf8(pieces[0]);
        if (object.contains(key)) return std::nullopt;
        object[key] = valueToJson(pieces[0], pieces[1], forms);
    }
    if (object.empty() || !writesBack(body, keyLinesFromJson(object, forms))) return std::nullopt;
    return object;
}

std::wstring keyLinesFromJson(Json const& object, KeyForms const& forms) {
    if (!object.is_object()) throw ReportJsonError("key lines must be an object");
    std::wstring text;
    for (auto const& item : object.items()) {
        std::wstring const key = fromUtf8(item.key());
        text += key;
        text += kKeyDivider;
        text += valueFromJson(key, item.value(), forms);
        text += L'\n';
    }
    return withoutLastLineFeed(text);
}

Json bodyToJson(std::wstring const& body, KeyForms const& forms) {
    std::optional<Json> keys = keyLinesToJson(body, forms);
    return keys ? std::move(*keys) : Json(toUtf8(body));
}

std::wstring bodyFromJson(Json const& value, KeyForms const& forms) {
    if (value.is_string()) return fromUtf8(value.get<std::string>());
    if (value.is_object()) return keyLinesFromJson(value, forms);
    throw ReportJsonError("a section must be an object of key lines or a string");
}

Json linesToJson(std::wstring const& body) {
    Json lines = Json::array();
    for (auto const& line : linesOf(body)) lines.push_back(toUtf8(line));
    return lines;
}

std::wstring linesFromJson(Json const& lines) {
    std::wstring text;
    for (auto const& line : array(lines, "a log")) {
        if (!line.is_string()) throw ReportJsonError("a log's lines must be strings");
        text += fromUtf8(line.get<std::string>());
        text += L'\n';
    }
    return withoutLastLineFeed(text);
}

std::optional<Json> cleanStackToJson(std::wstring const& body) {
    Json frames = Json::array();
    for (auto const& line : linesOf(body)) {
        auto const columns = split(line, kColumnDivider, 3);
        auto const kind = std::find_if(std::begin(kFrameKinds), std::end(kFrameKinds),
                                       [&](FrameKind const& known) { return columns[0] == known.column; });
        if (columns.size() < 3 || kind == std::end(kFrameKinds)) return std::nullopt;
        Json frame = {{"kind", kind->word}, {"stackSlot", toUtf8(columns[1])}, {"address", toUtf8(columns[2])}};
        if (columns.size() == 4) frame["module"] = toUtf8(columns[3]);
        frames.push_back(std::move(frame));
    }
    if (frames.empty() || !writesBack(body, cleanStackFromJson(frames))) return std::nullopt;
    return frames;
}

std::wstring cleanStackFromJson(Json const& frames) {
    std::wstring text;
    for (auto const& frame : array(frames, "a clean stack")) {
        std::string const& word = stringMember(frame, "kind");
        auto const kind = std::find_if(std::begin(kFrameKinds), std::end(kFrameKinds),
                                       [&](FrameKind const& known) { return word == known.word; });
        if (kind == std::end(kFrameKinds)) throw ReportJsonError("unknown frame kind '" + word + "'");
        text += kind->column;
        text += kColumnDivider;
        text += fromUtf8(stringMember(frame, "stackSlot"));
        text += kColumnDivider;
        text += fromUtf8(stringMember(frame, "address"));
        if (frame.contains("module")) {
            text += kColumnDivider;
            text += fromUtf8(stringMember(frame, "module"));
        }
        text += L'\n';
    }
    return withoutLastLineFeed(text);
}

std::optional<Json> rawStackToJson(std::wstring const& body) {
    Json slots = Json::array();
    for (auto const& line : linesOf(body)) {
        auto const pieces = split(line, kKeyDivider, 1);
        if (pieces.size() != 2) return std::nullopt;
        slots.push_back({{"stackSlot", toUtf8(pieces[0])}, {"returnAddress", toUtf8(pieces[1])}});
    }
    if (slots.empty() || !writesBack(body, rawStackFromJson(slots))) return std::nullopt;
    return slots;
}

std::wstring rawStackFromJson(Json const& slots) {
    std::wstring text;
    for (auto const& slot : array(slots, "a raw stack")) {
        text += fromUtf8(stringMember(slot, "stackSlot"));
        text += kKeyDivider;
        text += fromUtf8(stringMember(slot, "returnAddress"));
        text += L'\n';
    }
    return withoutLastLineFeed(text);
}

}  // namespace kelmur_feedback
