// Random insertions and removals against a plain sorted vector that follows
// the same rules. Run under the sanitizers, it also proves that every name
// is freed exactly once.
#include "map_testing.h"

#include <gtest/gtest.h>

#include <random>

namespace norvane_test {
namespace {

class ReferenceMap {
public:
    void insert(Entry const& n) {
        std::vector<Entry> out;
        bool placed = false;
        auto place = [&] {
            if (!placed) out.push_back(n);
            placed = true;
        };
        for (std::size_t i = 0; i < m_entries.size(); ++i) {
            Entry const& e = m_entries[i];
            bool const above = e.begin > n.end;
            bool const inside = e.begin >= n.begin && e.end <= n.end;
            bool const below = e.end <= n.begin;
            bool const around = e.begin < n.begin && e.end > n.end;
            if (above || (!inside && e.begin >= n.begin)) {
                place();
                out.push_back(e);
            } else if (inside) {
                place();
            } else if (below) {
                out.push_back(e);
                if (i + 1 == m_entries.size()) place();
            } else {
                out.push_back(e);
                if (!around) place();
            }
        }
        if (m_entries.empty()) out.push_back(n);
        m_entries = out;
    }

    void remove(std::uint64_t begin, std::uint64_t end) {
        auto within = [](std::uint64_t x, Entry const& e) { return x >= e.begin && x <= e.end; };
        std::vector<Entry> out;
        for (Entry const& e : m_entries) {
            if (!within(begin, e) && !within(end, e) && !(e.begin >= begin && e.end <= end)) out.push_back(e);
        }
        m_entries = out;
    }

    std::vector<Entry> const& entries() const { return m_entries; }

private:
    std::vector<Entry> m_entries;
};

TEST(ModuleMapModel, RandomChangesAgreeWithTheReference) {
    std::mt19937_64 random(20240611);
    for (int round = 0; round < 40; ++round) {
        MapPtr map = newMap();
        ReferenceMap reference;
        std::uint64_t const space = round < 20 ? 64 : 4096;  // crowded, then sparse
        for (int step = 0; step < 400; ++step) {
            std::uint64_t const begin = random() % space;
            std::uint64_t const end = begin + random() % 12;
            std::wstring const name = L"r" + std::to_wstring(step);
            if (random() % 4 == 0) {
                remove(*map, begin, end);
                reference.remove(begin, end);
            } else {
                insert(*map, begin, end, name);
                reference.insert(Entry{begin, end, name});
            }
            ASSERT_EQ(contents(*map), reference.entries()) << "round " << round << ", step " << step;
        }
    }
}

}  // namespace
}  // namespace norvane_test
