/// @file
/// The music database as the device presents it: levels that group the tracks, with songs as leaves.
///
///     Playlists  playlist > song
///     Artists    artist > album > song
///     Albums     album > song
///     Genres     genre > artist > album > song
///     Songs      song
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "music/track.h"

namespace ipodsim
{
enum class Grouping
{
    Playlist,
    Artist,
    Album,
    Genre,
    Song,
};

/// One entry of a level: all tracks below it, and the groupings of the levels below. A song has no levels below.
struct Entry
{
    std::string name;
    std::string reading;  ///< romanized name
    TrackList tracks;
    std::vector<Grouping> below;
};

struct Level
{
    std::vector<Entry> entries;
    bool folder = true;  ///< the entries are levels, not songs
};

/// The tracks to play, and the index of the first.
struct Selection
{
    TrackList tracks;
    std::size_t start = 0;
};

/// The current position in the database of one device. Starts at the root.
class Database
{
public:
    explicit Database(Library library);

    const Level& Current() const { return m_path.back(); }
    const Level& Root() const { return m_path.front(); }
    bool AtRoot() const { return m_path.size() == 1; }

    void EnterRoot();
    /// False at the root.
    bool EnterParent();
    /// False if the entry is a song or does not exist.
    bool EnterChild(int index);

    /// Selects a song with all others of its level, or everything below a folder. Empty if the entry does not exist.
    std::optional<Selection> Select(int index) const;

    /// Replaces the contents and returns to the root.
    void Replace(Library library);

    /// All songs.
    const TrackList& Songs() const { return m_library.tracks; }

private:
    const Entry* EntryAt(int index) const;
    Level MakeRoot() const;
    Level MakeLevel(const Entry& parent) const;

    Library m_library;
    std::vector<Level> m_path;
};
}  // namespace ipodsim
