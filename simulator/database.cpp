#include "database.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace ipodsim
{
namespace
{
const std::string& KeyOf(const Track& track, Grouping grouping)
{
    switch (grouping)
    {
        case Grouping::Artist:
            return track.artist;
        case Grouping::Album:
            return track.album;
        case Grouping::Genre:
            return track.genre;
        default:
            return track.title;
    }
}

Reading ReadingOf(Grouping grouping)
{
    return grouping == Grouping::Artist ? Reading::Person : Reading::Words;
}

// Chinese names stand among the Latin ones by their pinyin, as people look for them.
void SortByReading(std::vector<Entry>& entries, Reading reading)
{
    std::vector<std::pair<std::string, Entry>> keyed;
    keyed.reserve(entries.size());
    for (Entry& entry : entries) keyed.emplace_back(Pinyin(entry.name, reading), std::move(entry));
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b)
                     { return std::tie(a.first, a.second.name) < std::tie(b.first, b.second.name); });
    entries.clear();
    for (auto& [key, entry] : keyed) entries.push_back(std::move(entry));
}

std::vector<Entry> Group(const TrackList& tracks, Grouping grouping, const std::vector<Grouping>& below)
{
    std::map<std::string, TrackList> groups;
    for (const TrackPtr& track : tracks) groups[KeyOf(*track, grouping)].push_back(track);
    std::vector<Entry> entries;
    entries.reserve(groups.size());
    for (auto& [name, members] : groups) entries.push_back({name, std::move(members), below});
    return entries;
}

std::vector<Entry> SongsOf(const TrackList& tracks)
{
    std::vector<Entry> entries;
    entries.reserve(tracks.size());
    for (const TrackPtr& track : tracks) entries.push_back({track->title, {track}, {}});
    return entries;
}

std::vector<Entry> PlaylistsOf(const Library& library)
{
    std::vector<Entry> entries;
    for (const Playlist& playlist : library.playlists)
        entries.push_back({playlist.name, playlist.tracks, {Grouping::Song}});
    return entries;
}

// An album keeps the order of its track numbers, also when several artists share it.
TrackList ByNumber(TrackList tracks)
{
    std::stable_sort(tracks.begin(), tracks.end(),
                     [](const TrackPtr& a, const TrackPtr& b) { return a->number < b->number; });
    return tracks;
}
}  // namespace

Database::Database(Library library) : m_library(std::move(library))
{
    m_path.push_back(MakeRoot());
}

Level Database::MakeRoot() const
{
    const TrackList& all = m_library.tracks;
    return {{{"Playlists", all, {Grouping::Playlist}},
             {"Artists", all, {Grouping::Artist, Grouping::Album, Grouping::Song}},
             {"Albums", all, {Grouping::Album, Grouping::Song}},
             {"Genres", all, {Grouping::Genre, Grouping::Artist, Grouping::Album, Grouping::Song}},
             {"Songs", all, {Grouping::Song}}}};
}

Level Database::MakeLevel(const Entry& parent) const
{
    const Grouping grouping = parent.below.front();
    const std::vector<Grouping> below(parent.below.begin() + 1, parent.below.end());
    Level level;
    level.folder = grouping != Grouping::Song;
    level.reading = ReadingOf(grouping);
    if (grouping == Grouping::Playlist)
        level.entries = PlaylistsOf(m_library);
    else if (grouping == Grouping::Song)
        level.entries = SongsOf(parent.tracks);
    else
        level.entries = Group(parent.tracks, grouping, below);
    if (grouping == Grouping::Album)
        for (Entry& album : level.entries) album.tracks = ByNumber(std::move(album.tracks));
    // Songs of an album or a playlist have an order of their own.
    if (level.folder ? grouping != Grouping::Playlist : AtRoot()) SortByReading(level.entries, level.reading);
    return level;
}

const Entry* Database::EntryAt(int index) const
{
    const auto& entries = Current().entries;
    if (index < 0 || static_cast<std::size_t>(index) >= entries.size()) return nullptr;
    return &entries[static_cast<std::size_t>(index)];
}

void Database::EnterRoot()
{
    m_path.resize(1);
}

bool Database::EnterParent()
{
    if (AtRoot()) return false;
    m_path.pop_back();
    return true;
}

bool Database::EnterChild(int index)
{
    const Entry* const entry = EntryAt(index);
    if (entry == nullptr || entry->below.empty()) return false;
    m_path.push_back(MakeLevel(*entry));
    return true;
}

std::optional<Selection> Database::Select(int index) const
{
    const Entry* const entry = EntryAt(index);
    if (entry == nullptr) return {};
    if (Current().folder) return Selection{entry->tracks, 0};
    Selection selection{{}, static_cast<std::size_t>(index)};
    for (const Entry& song : Current().entries) selection.tracks.push_back(song.tracks.front());
    return selection;
}
}  // namespace ipodsim
