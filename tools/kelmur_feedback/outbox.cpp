#include "outbox.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

namespace kelmur_feedback {
namespace {

namespace fs = std::filesystem;

constexpr char kStateFile[] = "outbox-state.json";
constexpr char kLastUpload[] = "lastUpload";
constexpr char kTitles[] = "titles";

nlohmann::json emptyState() { return {{kLastUpload, nlohmann::json::object()}, {kTitles, nlohmann::json::object()}}; }

bool isWellFormed(nlohmann::json const& state) {
    return state.is_object() && state.contains(kLastUpload) && state[kLastUpload].is_object() &&
           state.contains(kTitles) && state[kTitles].is_object();
}

nlohmann::json readState(fs::path const& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return emptyState();
    nlohmann::json state = nlohmann::json::parse(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>(),
                                                 nullptr, false);
    if (isWellFormed(state)) return state;
    std::cerr << "kelmur-feedback: " << file.u8string() << " is damaged and starts anew\n";
    return emptyState();
}

// Written in place, never copied or renamed over: the mingw-w64 C++
// library's copy_file ignores overwrite_existing, and a report kept again
// after an earlier failure must replace the copy kept then.
bool writeFile(fs::path const& file, std::string const& bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    return out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())) && out.flush();
}

}  // namespace

Outbox::Outbox(fs::path folder) : m_folder(std::move(folder)), m_state(readState(m_folder / kStateFile)) {}

bool Outbox::keep(std::string const& name, std::string const& bytes, std::string const& title, std::string& error) {
    std::error_code created;
    fs::create_directories(m_folder, created);
    if (!writeFile(m_folder / fs::u8path(name), bytes)) {
        error = created ? created.message() : "the file can't be written";
        return false;
    }
    m_state[kTitles][name] = title;
    saveState();
    return true;
}

std::vector<Outbox::Waiting> Outbox::waiting() const {
    struct Found {
        fs::file_time_type written;
        Waiting report;
    };
    std::vector<Found> found;
    std::error_code error;
    for (auto const& entry : fs::directory_iterator(m_folder, error)) {
        std::string const name = entry.path().filename().u8string();
        if (!entry.is_regular_file(error) || name == kStateFile) continue;
        auto const title = m_state[kTitles].find(name);
        bool const noted = title != m_state[kTitles].end() && title->is_string();
        found.push_back({entry.last_write_time(error), {entry.path(), noted ? title->get<std::string>() : ""}});
    }
    std::stable_sort(found.begin(), found.end(), [](Found const& a, Found const& b) {
        return a.written != b.written ? a.written < b.written : a.report.file < b.report.file;
    });
    std::vector<Waiting> reports;
    for (auto& report : found) reports.push_back(std::move(report.report));
    return reports;
}

void Outbox::remove(std::string const& name) {
    std::error_code error;
    fs::remove(m_folder / fs::u8path(name), error);
    if (m_state[kTitles].erase(name) > 0) saveState();
}

std::optional<std::int64_t> Outbox::lastUpload(std::string const& product) const {
    auto const& times = m_state[kLastUpload];
    auto const time = times.find(product);
    if (time == times.end() || !time->is_number_integer()) return std::nullopt;
    return time->get<std::int64_t>();
}

void Outbox::noteUpload(std::string const& product, std::int64_t secondsSinceEpoch) {
    m_state[kLastUpload][product] = secondsSinceEpoch;
    saveState();
}

void Outbox::saveState() const {
    std::error_code error;
    fs::create_directories(m_folder, error);
    if (!writeFile(m_folder / kStateFile, m_state.dump(2, ' ', false, nlohmann::json::error_handler_t::replace))) {
        std::cerr << "kelmur-feedback: the outbox's state can't be written to " << (m_folder / kStateFile).u8string()
                  << '\n';
    }
}

}  // namespace kelmur_feedback
