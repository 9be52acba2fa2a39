// A report to JSON: reportToJson() of report_json.h.
#include "report_json.h"

#include "report_json_layout.h"

#include <set>

namespace kelmur_feedback {
namespace {

using norvane_1::ProblemReportStorage;
using namespace report_json_layout;

// The section the report writes its records of the problem to, decided as
// toString() decides it.
std::wstring problemSectionOf(ProblemReportStorage const& report) {
    if (report.isAssertion()) return L"Assertion";
    return report.isException() ? L"Exception" : L"ProcessDump";
}

// The report's sections in text order, as the library reads them: each is
// taken by the first member it fits, and what no member takes goes under
// "sections".
class ReportSections {
public:
    explicit ReportSections(ProblemReportStorage& report) {
        m_read.fromString(report.toString());
        for (auto const& name : sectionNames(m_read, m_read.toString())) {
            m_sections.push_back({name, m_read.getSection(name), false});
        }
    }

    // The decision of toString() for the report as read.
    std::wstring problemSection() const { return problemSectionOf(m_read); }

    std::optional<std::wstring> find(std::wstring const& name) const {
        for (auto const& section : m_sections) {
            if (!section.taken && section.name == name) return section.body;
        }
        return std::nullopt;
    }

    void take(std::wstring const& name) {
        for (auto& section : m_sections) section.taken = section.taken || section.name == name;
    }

    template <typename Visit>
    void forEachLeft(Visit&& visit) const {
        for (auto const& section : m_sections) {
            if (!section.taken) visit(section.name, section.body);
        }
    }

private:
    struct Section {
        std::wstring name;
        std::wstring body;
        bool taken;
    };
    ProblemReportStorage m_read;
    std::vector<Section> m_sections;
};

void addProblem(Json& json, ReportSections& sections, std::wstring const& name) {
    auto const body = sections.find(name);
    if (!body) return;
    json["problem"] = {{"kind", toUtf8(name)}, {"values", bodyToJson(*body, problemForms())}};
    sections.take(name);
}

void addKeySections(Json& json, ReportSections& sections) {
    for (auto const& named : kKeySections) {
        auto const body = sections.find(named.section);
        if (!body) continue;
        json[named.member] = bodyToJson(*body, formsOf(named.section));
        sections.take(named.section);
    }
}

// Module000, Module001, ... up to the first gap, as the library reads them.
void addModules(Json& json, ReportSections& sections) {
    Json modules = Json::array();
    for (std::size_t position = 0;; ++position) {
        std::wstring const name = moduleSectionName(position);
        auto const body = sections.find(name);
        std::optional<Json> module = body ? keyLinesToJson(*body, moduleForms()) : std::nullopt;
        if (!module) break;
        modules.push_back(std::move(*module));
        sections.take(name);
    }
    if (!modules.empty()) json["modules"] = std::move(modules);
}

// Contexts and stacks: a section per thread, named after it.
void addThreadSections(Json& json, ReportSections& sections) {
    Json contexts = Json::array();
    Json stacks = Json::array();
    std::vector<std::wstring> taken;
    sections.forEachLeft([&](std::wstring const& name, std::wstring const& body) {
        if (auto const thread = threadOf(name, kContextPrefix)) {
            if (auto registers = keyLinesToJson(body)) {
                contexts.push_back({{"thread", *thread}, {"registers", std::move(*registers)}});
                taken.push_back(name);
            }
        } else if (auto const cleanThread = threadOf(name, kCleanStackPrefix)) {
            if (auto frames = cleanStackToJson(body)) {
                stacks.push_back({{"thread", *cleanThread}, {"kind", "clean"}, {"frames", std::move(*frames)}});
                taken.push_back(name);
            }
        } else if (auto const rawThread = threadOf(name, kRawStackPrefix)) {
            if (auto slots = rawStackToJson(body)) {
                stacks.push_back({{"thread", *rawThread}, {"kind", "raw"}, {"slots", std::move(*slots)}});
                taken.push_back(name);
            }
        }
    });
    for (auto const& name : taken) sections.take(name);
    if (!contexts.empty()) json["contexts"] = std::move(contexts);
    if (!stacks.empty()) json["stacks"] = std::move(stacks);
}

void addLogs(Json& json, ReportSections& sections) {
    for (auto const& log : kLogs) {
        auto const body = sections.find(log.section);
        if (!body) continue;
        json["logs"][log.member] = linesToJson(*body);
        sections.take(log.section);
    }
}

void addOtherSections(Json& json, ReportSections const& sections) {
    sections.forEachLeft([&json](std::wstring const& name, std::wstring const& body) {
        json["sections"][toUtf8(name)] = bodyToJson(body);
    });
}

}  // namespace

std::vector<std::wstring> sectionNames(ProblemReportStorage& report, std::wstring const& text) {
    std::vector<std::wstring> names;
    std::set<std::wstring> seen;
    std::wstring::size_type start = 0;
    while (start < text.size()) {
        auto end = text.find(L'\n', start);
        if (end == std::wstring::npos) end = text.size();
        std::wstring line = text.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == L'\r') line.pop_back();
        if (line.size() < 3 || line.front() != L'[' || line.back() != L']') continue;
        // A head-like line inside a section's text names no section, unless
        // the report has one of that name.
        std::wstring const name = line.substr(1, line.size() - 2);
        if (seen.insert(name).second && !report.getSection(name).empty()) names.push_back(name);
    }
    return names;
}
Json reportToJson(ProblemReportStorage& report) {
    ReportSections sections(report);
    Json json = Json::object();
    addProblem(json, sections, sections.problemSection());
    addKeySections(json, sections);
    addModules(json, sections);
    addThreadSections(json, sections);
    addLogs(json, sections);
    addOtherSections(json, sections);
    return json;
}

}  // namespace kelmur_feedback
