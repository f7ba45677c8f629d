/// @file
/// The music database as the device shows it: levels that group the tracks, and songs at the end of each way.
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

/// One entry of a level: everything below it, and how the levels below group it. A song has none below.
struct Entry
{
    std::string name;
    std::string reading;  ///< in Latin letters
    TrackList tracks;
    std::vector<Grouping> below;
};

struct Level
{
    std::vector<Entry> entries;
    bool folder = true;  ///< its entries are levels, not songs
};

/// What to play, and where in it to start.
struct Selection
{
    TrackList tracks;
    std::size_t start = 0;
};

/// Where one user stands in the database of one device. Starts at the root.
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
    /// False when the entry is a song or not there.
    bool EnterChild(int index);

    /// A song with all its neighbours, or everything below a folder. Empty when there is no such entry.
    std::optional<Selection> Select(int index) const;

    /// Another state of the same medium. Stands at its root.
    void Replace(Library library);

    /// Every song there is.
    const TrackList& Songs() const { return m_library.tracks; }

private:
    const Entry* EntryAt(int index) const;
    Level MakeRoot() const;
    Level MakeLevel(const Entry& parent) const;

    Library m_library;
    std::vector<Level> m_path;
};
}  // namespace ipodsim
