// JSON to a report: reportFromJson() of report_json.h.
#include "report_json.h"

#include "report_json_layout.h"

#include <algorithm>
#include <set>

namespace kelmur_feedback {
namespace {

using norvane_1::ProblemReportStorage;
using namespace report_json_layout;

std::uint32_t threadMember(Json const& entry) {
    if (!entry.is_object() || !entry.contains("thread") || !entry["thread"].is_number_unsigned() ||
        entry["thread"].get<std::uint64_t>() > UINT32_MAX) {
        throw ReportJsonError("a context or stack needs a \"thread\", a 32-bit number");
    }
    return entry["thread"].get<std::uint32_t>();
}

Json const& member(Json const& object, char const* name) {
    if (!object.contains(name)) throw ReportJsonError(std::string("missing \"") + name + "\"");
    return object[name];
}

// Gathers section bodies from JSON, then makes the report of them.
class ReportBuilder {
public:
    // A section whose records the report reads from its text; the others
    // are set as they are, so that their text stays exactly as given.
    void add(std::wstring const& name, std::wstring const& body, bool intoRecords) {
        if (!m_names.insert(name).second) throw ReportJsonError("section '" + toUtf8(name) + "' given twice");
        (intoRecords ? m_recorded : m_asGiven).push_back({name, body});
    }

    ProblemReportStorage build() const {
        std::wstring text;
        for (auto const& section : m_recorded) text += L"[" + section.first + L"]\n" + section.second + L"\n\n";
        ProblemReportStorage report;
        try {
            report.fromString(text);
        } catch (std::exception const& error) {
            throw ReportJsonError(std::string("the problem's values don't read: ") + error.what());
        }
        for (auto const* sections : {&m_recorded, &m_asGiven}) {
            for (auto const& section : *sections) report.setSection(section.first, section.second);
        }
        // The report writes its products from a record of their own.
        for (auto const& section : m_asGiven) {
            if (section.first == L"Products") report.setProductInfo(section.second);
        }
        return report;
    }

private:
    std::set<std::wstring> m_names;
    std::vector<std::pair<std::wstring, std::wstring>> m_recorded;
    std::vector<std::pair<std::wstring, std::wstring>> m_asGiven;
};

void readProblem(Json const& problem, ReportBuilder& builder) {
    if (!problem.is_object() || !problem.contains("kind") || !problem["kind"].is_string()) {
        throw ReportJsonError("\"problem\" needs a \"kind\"");
    }
    std::wstring const kind = fromUtf8(problem["kind"].get<std::string>());
    if (kind != L"Exception" && kind != L"Assertion" && kind != L"ProcessDump") {
        throw ReportJsonError("unknown problem kind '" + toUtf8(kind) + "'");
    }
    builder.add(kind, bodyFromJson(member(problem, "values"), problemForms()), true);
}

void readKeySections(Json const& json, ReportBuilder& builder) {
    for (auto const& named : kKeySections) {
        if (!json.contains(named.member)) continue;
        // The dump's values are a record of their own.
        bool const recorded = named.section == std::wstring(L"Dump");
        builder.add(named.section, bodyFromJson(json[named.member], formsOf(named.section)), recorded);
    }
}

void readModules(Json const& modules, ReportBuilder& builder) {
    if (!modules.is_array()) throw ReportJsonError("\"modules\" must be an array");
    for (std::size_t position = 0; position < modules.size(); ++position) {
        builder.add(moduleSectionName(position), keyLinesFromJson(modules[position], moduleForms()), true);
    }
}

void readContexts(Json const& contexts, ReportBuilder& builder) {
    if (!contexts.is_array()) throw ReportJsonError("\"contexts\" must be an array");
    for (auto const& context : contexts) {
        std::wstring const name = std::wstring(kContextPrefix) + threadSuffix(threadMember(context));
        builder.add(name, keyLinesFromJson(member(context, "registers")), true);
    }
}

void readStacks(Json const& stacks, ReportBuilder& builder) {
    if (!stacks.is_array()) throw ReportJsonError("\"stacks\" must be an array");
    for (auto const& stack : stacks) {
        std::wstring const thread = threadSuffix(threadMember(stack));
        Json const& kind = member(stack, "kind");
        if (kind == "clean") {
            builder.add(std::wstring(kCleanStackPrefix) + thread, cleanStackFromJson(member(stack, "frames")), true);
        } else if (kind == "raw") {
            builder.add(std::wstring(kRawStackPrefix) + thread, rawStackFromJson(member(stack, "slots")), true);
        } else {
            throw ReportJsonError("a stack's \"kind\" is \"clean\" or \"raw\"");
        }
    }
}

void readLogs(Json const& logs, ReportBuilder& builder) {
    if (!logs.is_object()) throw ReportJsonError("\"logs\" must be an object");
    for (auto const& item : logs.items()) {
        auto const known = std::find_if(std::begin(kLogs), std::end(kLogs),
                                        [&item](NamedSection const& log) { return item.key() == log.member; });
        if (known == std::end(kLogs)) throw ReportJsonError("unknown log \"" + item.key() + "\"");
        builder.add(known->section, linesFromJson(item.value()), false);
    }
}

void readOtherSections(Json const& sections, ReportBuilder& builder) {
    if (!sections.is_object()) throw ReportJsonError("\"sections\" must be an object");
    for (auto const& item : sections.items()) {
        if (item.key().empty()) throw ReportJsonError("a section needs a name");
        builder.add(fromUtf8(item.key()), bodyFromJson(item.value()), false);
    }
}

void checkMembers(Json const& json) {
    if (!json.is_object()) throw ReportJsonError("a report is a JSON object");
    for (auto const& item : json.items()) {
        auto const known = std::find_if(std::begin(kMembers), std::end(kMembers),
                                        [&item](char const* name) { return item.key() == name; });
        if (known == std::end(kMembers)) throw ReportJsonError("unknown member \"" + item.key() + "\"");
    }
}

}  // namespace

ProblemReportStorage reportFromJson(Json const& json) {
    checkMembers(json);
    ReportBuilder builder;
    try {
        if (json.contains("problem")) readProblem(json["problem"], builder);
        readKeySections(json, builder);
        if (json.contains("modules")) readModules(json["modules"], builder);
        if (json.contains("contexts")) readContexts(json["contexts"], builder);
        if (json.contains("stacks")) readStacks(json["stacks"], builder);
        if (json.contains("logs")) readLogs(json["logs"], builder);
        if (json.contains("sections")) readOtherSections(json["sections"], builder);
    } catch (Json::exception const& error) {
        throw ReportJsonError(error.what());
    }
    return builder.build();
}

}  // namespace kelmur_feedback
