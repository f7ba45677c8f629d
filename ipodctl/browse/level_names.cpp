#include "browse/level_names.h"

#include <algorithm>

namespace ctl::browse
{
void LevelNames::Reset(int count)
{
    m_entries.assign(static_cast<std::size_t>(std::max(0, count)), Entry());
    m_loaded = 0;
    m_firstMissing = 0;
}

void LevelNames::MarkStale()
{
    for (Entry& entry : m_entries)
        if (entry.state == State::Loaded) entry.state = State::Stale;
    m_loaded = 0;
    m_firstMissing = 0;
}

const std::string* LevelNames::At(int index) const
{
    if (index < 0 || index >= Count()) return nullptr;
    const Entry& entry = m_entries[static_cast<std::size_t>(index)];
    return entry.state == State::Unknown ? nullptr : &entry.name;
}

bool LevelNames::Put(int first, const std::vector<std::string>& names)
{
    bool changed = false;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        const std::size_t index = static_cast<std::size_t>(std::max(0, first)) + i;
        if (index >= m_entries.size()) break;
        Entry& entry = m_entries[index];
        changed = changed || entry.state == State::Unknown || entry.name != names[i];
        m_loaded += entry.state == State::Loaded ? 0 : 1;
        entry = {names[i], State::Loaded};
    }
    return changed;
}

int LevelNames::NextMissing(int first, int rows) const
{
    const auto missing = [this](int index)
    { return m_entries[static_cast<std::size_t>(index)].state != State::Loaded; };
    const int end = std::min(first + rows, Count());
    for (int index = std::max(0, first); index < end; ++index)
        if (missing(index)) return index;
    while (m_firstMissing < Count() && !missing(m_firstMissing)) ++m_firstMissing;
    return m_firstMissing < Count() ? m_firstMissing : -1;
}

int LevelNames::Find(const std::string& name, int likely) const
{
    const std::string* const there = At(likely);
    if (there != nullptr && *there == name) return likely;
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(),
                     [&](const Entry& entry) { return entry.state != State::Unknown && entry.name == name; });
    return found == m_entries.end() ? -1 : static_cast<int>(found - m_entries.begin());
}

std::vector<std::string> LevelNames::All() const
{
    std::vector<std::string> names;
    names.reserve(m_entries.size());
    for (const Entry& entry : m_entries) names.push_back(entry.name);
    return names;
}
}  // namespace ctl::browse
