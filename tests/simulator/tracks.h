/// @file
/// Tracks for tests.
#pragma once

#include <string>
#include <utility>

#include "music/track.h"

/// Creates "Song 0", "Song 1", … by one artist, @p perAlbum per album, @p lengthMs each.
inline ipodsim::TrackList Tracks(int count, int perAlbum = 1000, int lengthMs = 10000)
{
    ipodsim::TrackList tracks;
    for (int i = 0; i < count; ++i)
    {
        ipodsim::Track track;
        track.title = "Song " + std::to_string(i);
        track.artist = "Artist";
        track.album = "Album " + std::to_string(i / perAlbum);
        track.genre = "Genre";
        track.number = i % perAlbum + 1;
        track.lengthMs = lengthMs;
        tracks.push_back(std::make_shared<const ipodsim::Track>(std::move(track)));
    }
    return tracks;
}
