/// @file
/// The names of a level while they are loaded, page by page and in any order.
#pragma once

#include <string>
#include <vector>

namespace ctl::browse
{
class LevelNames
{
public:
    /// Starts over with @p count unknown entries.
    void Reset(int count);

    /// Marks all entries for loading again. At() keeps returning the old names until then.
    void MarkStale();

    int Count() const { return static_cast<int>(m_entries.size()); }
    int Loaded() const { return m_loaded; }
    bool Complete() const { return m_loaded == Count(); }

    /// Returns the name, which may be stale; null if it is unknown or @p index is out of range.
    const std::string* At(int index) const;

    /// Stores a page. Entries outside the level are ignored.
    /// @return whether any name changed
    bool Put(int first, const std::vector<std::string>& names);

    /// Returns the entry to load next: the first missing one of @p rows entries starting at @p first, or else the first
    /// missing one of the level; -1 if the level is complete.
    int NextMissing(int first, int rows) const;

    /// Returns the index of @p name, trying @p likely first; -1 if no entry has this name.
    int Find(const std::string& name, int likely) const;

    std::vector<std::string> All() const;

private:
    enum class State : char
    {
        Unknown,
        Stale,
        Loaded,
    };

    struct Entry
    {
        std::string name;
        State state = State::Unknown;
    };

    std::vector<Entry> m_entries;
    int m_loaded = 0;
    mutable int m_firstMissing = 0;  // lower bound of the first missing entry
};
}  // namespace ctl::browse
