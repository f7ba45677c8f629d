/// @file
/// Playlist files: .m3u and .m3u8.
#pragma once

#include <string>
#include <vector>

namespace ipodsim
{
struct PlaylistFile
{
    std::string name;                ///< title inside the file, or the file name
    std::vector<std::string> files;  ///< normalized absolute paths, which may not exist
};

/// Reads a playlist. Entries are file: URIs or paths, absolute or relative to the playlist, in UTF-8 or else Latin-1,
/// with slashes or backslashes. Comments and other URIs are ignored. Empty if the file cannot be read.
PlaylistFile ReadPlaylist(const std::string& file);
}  // namespace ipodsim
