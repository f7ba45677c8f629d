/// @file
/// What the simulated device plays: tracks, their pictures, playlists. Plain values; a track never changes once it
/// is part of a library, so that the database, the queue and the player share it.
#pragma once

#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace ipodsim
{
using Bytes = std::vector<unsigned char>;

/// A picture as it is stored in a file. Width and height are in pixels, 0 when the format is not known.
struct Picture
{
    Bytes bytes;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// The names of a track in Latin letters. One that is empty has not been read: it is plain ASCII, or the track comes
/// from a place that does not read ahead.
struct Readings
{
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
};

/// All texts but the readings are valid UTF-8 of at most 255 bytes and never empty.
struct Track
{
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
    int number = 0;                ///< within its album, 0 when unknown
    int lengthMs = 0;              ///< 0 when unknown
    bool hasPicture = false;       ///< its own, or that of its folder
    bool pictureTooLarge = false;  ///< its own is left out for that
    std::string folderPicture;     ///< file with the picture of its folder, for a track without one of its own
    Readings readings;
    std::string file;                   ///< empty for a track of the built-in library
    std::shared_future<Picture> cover;  ///< of a track without file: drawn when it is first asked for
};

using TrackPtr = std::shared_ptr<const Track>;
using TrackList = std::vector<TrackPtr>;

struct Playlist
{
    std::string name;
    TrackList tracks;
};

/// Tracks in the order artist, album, number, title.
struct Library
{
    TrackList tracks;
    std::vector<Playlist> playlists;
};
}  // namespace ipodsim
