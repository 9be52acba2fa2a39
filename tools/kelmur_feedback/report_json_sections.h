// The bodies of report sections as JSON values, and back.
//
// Each reader gives nothing when its JSON would not write the body back as
// it was; the caller then keeps that body as a string, so that nothing of a
// report is lost on its way through JSON. Bodies are as the library reads
// them, without line ends around them; a body it makes anew from its records
// ends in a line feed, which counts for nothing, since such a body is made
// anew from the report read back as well.
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

// "Key: value" lines as an object, in line order.
std::optional<Json> keyLinesToJson(std::wstring const& body, KeyForms const& forms = {});
std::wstring keyLinesFromJson(Json const& object, KeyForms const& forms = {});

// Any body: its key lines as an object where they give the body back, else
// the body as a string.
Json bodyToJson(std::wstring const& body, KeyForms const& forms = {});
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
