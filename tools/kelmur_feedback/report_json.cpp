#include "report_json.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <set>
#include <string_view>

namespace kelmur_feedback {
namespace {

using norvane_1::ProblemReportStorage;

struct NamedSection {
    wchar_t const* section;
    char const* member;
};

constexpr NamedSection kKeySections[] = {{L"Process", "process"},       {L"Products", "products"},
                                         {L"System", "system"},         {L"ClientInfo", "clientInfo"},
                                         {L"Dump", "dump"},             {L"UncaughtException", "uncaughtException"}};
constexpr NamedSection kLogs[] = {{L"PremortalLog", "premortal"}, {L"CreationLog", "creation"}};
constexpr char const* kMembers[] = {"problem", "process", "products", "system",   "clientInfo", "dump",
                                    "uncaughtException", "modules", "contexts", "stacks", "logs", "sections"};

constexpr std::wstring_view kContextPrefix = L"Context.";
constexpr std::wstring_view kCleanStackPrefix = L"Stack.clean.";
constexpr std::wstring_view kRawStackPrefix = L"Stack.raw.";

KeyForms const& problemForms() {
    static KeyForms const forms{{L"Description", L"Module", L"Expression", L"File", L"Command line", L"Executable"},
                                {L"CrashedPID", L"CrashedTID", L"Line", L"ProcessBitness"}};
    return forms;
}

KeyForms const& moduleForms() {
    static KeyForms const forms{{L"FullName", L"SymbolName"}, {}};
    return forms;
}

KeyForms formsOf(std::wstring const& section) {
    if (section == L"UncaughtException") return {{L"Type", L"What"}, {}};
    return {};
}

// The section the report writes its records of the problem to, decided as
// toString() decides it.
std::wstring problemSectionOf(ProblemReportStorage const& report) {
    if (report.isAssertion()) return L"Assertion";
    return report.isException() ? L"Exception" : L"ProcessDump";
}

std::wstring moduleSectionName(std::size_t position) {
    wchar_t name[32];
    std::swprintf(name, sizeof name / sizeof name[0], L"Module%03zu", position);
    return name;
}

std::wstring threadSuffix(std::uint32_t thread) {
    wchar_t text[16];
    std::swprintf(text, sizeof text / sizeof text[0], L"0x%08x", static_cast<unsigned>(thread));
    return text;
}

// The thread of a section named `prefix` and the thread id as the library
// writes it; nothing for any other name.
std::optional<std::uint32_t> threadOf(std::wstring const& name, std::wstring_view prefix) {
    if (name.compare(0, prefix.size(), prefix) != 0) return std::nullopt;
    std::wstring const suffix = name.substr(prefix.size());
    if (suffix.size() != 10 || suffix.compare(0, 2, L"0x") != 0) return std::nullopt;
    std::uint32_t thread = 0;
    for (wchar_t c : suffix.substr(2)) {
        bool const digit = c >= L'0' && c <= L'9';
        if (!digit && !(c >= L'a' && c <= L'f')) return std::nullopt;
        thread = thread * 16 + static_cast<std::uint32_t>(digit ? c - L'0' : c - L'a' + 10);
    }
    return thread;
}

// The report's sections in text order; each is taken by the first member
// it fits, and what no member takes goes under "sections".
class ReportSections {
public:
    explicit ReportSections(ProblemReportStorage& report) {
        for (auto const& name : sectionNames(report, report.toString())) {
            m_sections.push_back({name, report.getSection(name), false});
        }
    }

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
        json["sections"][toUtf8(name)] = bodyToJson(body, {}, Fit::exact);
    });
}

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
    addProblem(json, sections, problemSectionOf(report));
    addKeySections(json, sections);
    addModules(json, sections);
    addThreadSections(json, sections);
    addLogs(json, sections);
    addOtherSections(json, sections);
    return json;
}

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
