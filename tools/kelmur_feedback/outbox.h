// The outbox: the folder where reports that were not sent wait, with a
// small state file of its own ("outbox-state.json") that holds the time of
// the last upload of each product and the title each waiting report was
// to be sent with:
//
//   {"lastUpload": {"Sample Tool": 1763900000}, "titles": {"report-1.txt": "..."}}
//
// Two tools sending at the same moment may each write the state file; the
// one written last stands, which at worst lets one extra upload through.
// A damaged state file counts as empty.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelmur_feedback {

class Outbox {
public:
    struct Waiting {
        std::filesystem::path file;
        std::string title;  // empty when it was not noted
    };

    explicit Outbox(std::filesystem::path folder);

    std::filesystem::path const& folder() const { return m_folder; }

    // Writes the report's bytes under `name`, in place of an older copy of
    // that name, and notes its title. False, with the reason, if it can't.
    bool keep(std::string const& name, std::string const& bytes, std::string const& title, std::string& error);
    // The reports that wait, oldest first.
    std::vector<Waiting> waiting() const;
    // A report delivered: its copy and its title go.
    void remove(std::string const& name);

    // Seconds since the epoch.
    std::optional<std::int64_t> lastUpload(std::string const& product) const;
    void noteUpload(std::string const& product, std::int64_t secondsSinceEpoch);

private:
    void saveState() const;

    std::filesystem::path m_folder;
    nlohmann::json m_state;
};

}  // namespace kelmur_feedback
