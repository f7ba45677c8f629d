/// @file
/// Playlists as files: .m3u and .m3u8.
#pragma once

#include <string>
#include <vector>

namespace ipodsim
{
struct PlaylistFile
{
    std::string name;                ///< what the file says of itself, or its own name
    std::vector<std::string> files;  ///< absolute paths without "." and "..", whether they exist or not
};

/// Reads one. Entries are paths, relative to the playlist or absolute, or file: URIs; in UTF-8 or else Latin-1; with
/// slashes or backslashes. Comments and addresses of other kinds are passed over. Empty when it cannot be read.
PlaylistFile ReadPlaylist(const std::string& file);
}  // namespace ipodsim
