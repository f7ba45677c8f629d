/// @file
/// The names of a level while they arrive, page by page and in any order.
#pragma once

#include <string>
#include <vector>

namespace ctl::browse
{
class LevelNames
{
public:
    /// Starts with so many entries, none of which is known.
    void Reset(int count);

    /// Expects all of them once more; until then the old ones are shown.
    void Renew();

    int Count() const { return static_cast<int>(m_entries.size()); }
    int Arrived() const { return m_arrived; }
    bool Complete() const { return m_arrived == Count(); }

    /// The name, also an old one; null when none is known or there is no such entry.
    const std::string* At(int index) const;

    /// Takes a page. What lies outside the level is left out.
    /// @return whether a name is another one than before
    bool Put(int first, const std::vector<std::string>& names);

    /// The entry to ask for next: the first of @p rows entries from @p first on that has not arrived, or else the first
    /// of all; -1 when nothing is missing.
    int Missing(int first, int rows) const;

    /// The index of a name, -1 when no entry has it. The present place of the name is looked at first.
    int Find(const std::string& name, int likely) const;

    std::vector<std::string> All() const;

private:
    enum class State : char
    {
        Unknown,
        Old,
        Arrived,
    };

    struct Entry
    {
        std::string name;
        State state = State::Unknown;
    };

    std::vector<Entry> m_entries;
    int m_arrived = 0;
    mutable int m_gap = 0;  // everything before has arrived
};
}  // namespace ctl::browse
