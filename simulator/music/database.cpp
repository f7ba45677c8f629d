#include "music/database.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "music/text.h"

namespace ipodsim
{
namespace
{
// What a grouping reads from a track.
struct Key
{
    std::string Track::*name;
    std::string Readings::*reading;
    ipodnames::Subject subject;
};

Key KeyOf(Grouping grouping)
{
    using ipodnames::Subject;
    switch (grouping)
    {
        case Grouping::Artist:
            return {&Track::artist, &Readings::artist, Subject::Person};
        case Grouping::Album:
            return {&Track::album, &Readings::album, Subject::Title};
        case Grouping::Genre:
            return {&Track::genre, &Readings::genre, Subject::Title};
        default:
            return {&Track::title, &Readings::title, Subject::Title};
    }
}

std::string ReadingOf(const Track& track, const Key& key)
{
    const std::string& ahead = track.readings.*key.reading;
    return ahead.empty() ? Pinyin(track.*key.name, key.subject) : ahead;
}

// Chinese names are sorted by their pinyin among Latin names, where users look for them.
void SortByReading(std::vector<Entry>& entries)
{
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b)
                     { return std::tie(a.reading, a.name) < std::tie(b.reading, b.name); });
}

std::vector<Entry> Group(const TrackList& tracks, Grouping grouping, const std::vector<Grouping>& below)
{
    const Key key = KeyOf(grouping);
    std::map<std::string, TrackList> groups;
    for (const TrackPtr& track : tracks) groups[(*track).*key.name].push_back(track);
    std::vector<Entry> entries;
    entries.reserve(groups.size());
    for (auto& [name, members] : groups)
    {
        std::string reading = ReadingOf(*members.front(), key);
        entries.push_back({name, std::move(reading), std::move(members), below});
    }
    return entries;
}

std::vector<Entry> SongsOf(const TrackList& tracks)
{
    std::vector<Entry> entries;
    entries.reserve(tracks.size());
    for (const TrackPtr& track : tracks)
        entries.push_back({track->title, ReadingOf(*track, KeyOf(Grouping::Song)), {track}, {}});
    return entries;
}

std::vector<Entry> PlaylistsOf(const Library& library)
{
    std::vector<Entry> entries;
    for (const Playlist& playlist : library.playlists)
        entries.push_back(
            {playlist.name, Pinyin(playlist.name, ipodnames::Subject::Title), playlist.tracks, {Grouping::Song}});
    return entries;
}

// An album keeps the order of its track numbers even if several artists share it.
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
    return {{{"Playlists", "playlists", all, {Grouping::Playlist}},
             {"Artists", "artists", all, {Grouping::Artist, Grouping::Album, Grouping::Song}},
             {"Albums", "albums", all, {Grouping::Album, Grouping::Song}},
             {"Genres", "genres", all, {Grouping::Genre, Grouping::Artist, Grouping::Album, Grouping::Song}},
             {"Songs", "songs", all, {Grouping::Song}}}};
}

Level Database::MakeLevel(const Entry& parent) const
{
    const Grouping grouping = parent.below.front();
    const std::vector<Grouping> below(parent.below.begin() + 1, parent.below.end());
    Level level;
    level.folder = grouping != Grouping::Song;
    if (grouping == Grouping::Playlist)
        level.entries = PlaylistsOf(m_library);
    else if (grouping == Grouping::Song)
        level.entries = SongsOf(parent.tracks);
    else
        level.entries = Group(parent.tracks, grouping, below);
    if (grouping == Grouping::Album)
        for (Entry& album : level.entries) album.tracks = ByNumber(std::move(album.tracks));
    // Albums and playlists have their own song order.
    if (level.folder ? grouping != Grouping::Playlist : AtRoot()) SortByReading(level.entries);
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

void Database::Replace(Library library)
{
    m_library = std::move(library);
    m_path.assign(1, MakeRoot());
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
