/// @file
/// The music of the simulated device: tracks, artwork, playlists. A track is immutable once it is part of a library, so
/// the database, the queue, and the player share it.
#pragma once

#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace ipodsim
{
using Bytes = std::vector<unsigned char>;

/// An image as stored in a file. Width and height are in pixels, 0 if the format is unknown.
struct Picture
{
    Bytes bytes;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// The romanized names of a track. Empty if not computed: the name is plain ASCII, or its source computes no readings
/// in advance.
struct Readings
{
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
};

/// Except for the readings, all strings are non-empty valid UTF-8 of at most 255 bytes.
struct Track
{
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
    int number = 0;                ///< within its album; 0 if unknown
    int lengthMs = 0;              ///< 0 if unknown
    bool hasPicture = false;       ///< its own artwork, or that of its folder
    bool pictureTooLarge = false;  ///< its own artwork exceeds the limit and is omitted
    std::string folderPicture;     ///< image file of its folder, for a track without its own artwork
    Readings readings;
    std::string file;                   ///< empty for a track of the built-in library
    std::shared_future<Picture> cover;  ///< for a track without a file: drawn at the first request
};

using TrackPtr = std::shared_ptr<const Track>;
using TrackList = std::vector<TrackPtr>;

struct Playlist
{
    std::string name;
    TrackList tracks;
};

/// Tracks are sorted by artist, album, number, and title.
struct Library
{
    TrackList tracks;
    std::vector<Playlist> playlists;
};
}  // namespace ipodsim
