// The bodies of report sections as JSON values, and back.
//
// Each reader gives nothing when its JSON would not write the body back as
// it was; the caller then keeps that body as a string, so that nothing of a
// report is lost on its way through JSON. The writers end every line with a
// line feed, as the library's writers do. The library reads a body without
// that last line feed, so for the sections it writes itself a body with or
// without it is the same body.
#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace kelmur_feedback {

// Objects keep the order of their members: key lines stay in report order.
using Json = nlohmann::ordered_json;

// JSON that does not describe a report.
class ReportJsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string toUtf8(std::wstring const& text);
std::wstring fromUtf8(std::string const& text);

// The keys whose values are more than text as written: escaped report text
// ("&nbsp;", "<br>", "&amp;") is held decoded, decimals as JSON numbers.
struct KeyForms {
    std::vector<std::wstring> escaped;
    std::vector<std::wstring> decimal;
};

// How a body must match what its JSON writes back: sections of the host's
// own (custom sections) keep their ends exactly.
enum class Fit { lastLineFeedOptional, exact };

// "Key: value" lines as an object, in line order.
std::optional<Json> keyLinesToJson(std::wstring const& body, KeyForms const& forms = {},
                                   Fit fit = Fit::lastLineFeedOptional);
std::wstring keyLinesFromJson(Json const& object, KeyForms const& forms = {});

// Any body: its key lines as an object where they give the body back, else
// the body as a string.
Json bodyToJson(std::wstring const& body, KeyForms const& forms = {}, Fit fit = Fit::lastLineFeedOptional);
std::wstring bodyFromJson(Json const& value, KeyForms const& forms = {});

// A log: an array of its lines.
Json linesToJson(std::wstring const& body);
std::wstring linesFromJson(Json const& lines);

// A clean stack, "kind | stack slot | address[ | module]" lines, as frame
// objects; a raw stack, "stack slot: return address" lines, as slot objects.
std::optional<Json> cleanStackToJson(std::wstring const& body);
std::wstring cleanStackFromJson(Json const& frames);
std::optional<Json> rawStackToJson(std::wstring const& body);
std::wstring rawStackFromJson(Json const& slots);

}  // namespace kelmur_feedback
