// A problem report as JSON, for programs that read reports, and back.
//
//   {
//     "problem":  {"kind": "Exception", "values": {"Address": "0x…", "CrashedPID": 4120, …}},
//     "process":  {"Process Name": "sample.exe", …},
//     "products", "system", "clientInfo", "dump", "uncaughtException": likewise,
//     "modules":  [{"Base": "0x…", "FullName": "C:\\Program Files\\…", …}, …],
//     "contexts": [{"thread": 6632, "registers": {"EAX": "0x…", …}}],
//     "stacks":   [{"thread": 6632, "kind": "clean", "frames": [{"kind": "fault",
//                   "stackSlot": "0x…", "address": "0x…", "module": "sample tool.dll"}, …]},
//                  {"thread": 6632, "kind": "raw", "slots": [{"stackSlot": "0x…",
//                   "returnAddress": "0x…"}, …]}],
//     "logs":     {"premortal": ["first line", …], "creation": […]},
//     "sections": {"Device Info": {"GPU": "…"}, "Notes": "free text", …}
//   }
//
// Key lines become objects under the report's own key names; escaped text
// is decoded and decimal ids are numbers, while addresses stay in the
// report's "0x" form, since 64-bit values don't survive every JSON reader.
// A section whose text doesn't fit its structure, and every section the
// tool has no name for (custom sections among them), goes under "sections",
// as key lines where they fit and as text where not. Members without a
// section in the report are left out.
//
// The JSON holds the report as the library reads it: the text of
// reportFromJson(reportToJson(r)) is the text of r read and written again,
// which for a report read from a file is r.toString() itself. Only line
// feeds around a section's text, which the library's reader drops, can
// differ from the text a report was made with in code.
#pragma once

#include "report_json_sections.h"

#include <norvane_1/problem_report_storage.h>

#include <string>
#include <vector>

namespace kelmur_feedback {

// Not const: the report brings its section map up to date first.
Json reportToJson(norvane_1::ProblemReportStorage& report);

// Throws ReportJsonError for JSON that doesn't describe a report.
norvane_1::ProblemReportStorage reportFromJson(Json const& json);

// The names of the sections `report` holds, as heads of `text`, in their
// order there: a text with none is no report.
std::vector<std::wstring> sectionNames(norvane_1::ProblemReportStorage& report, std::wstring const& text);

}  // namespace kelmur_feedback
