/// @file
/// Music libraries: read from a folder, or built in.
#pragma once

#include <string>

#include "music/folder_scan.h"
#include "music/track.h"

namespace ipodsim
{
/// Reads all audio files below @p folder. Its playlists are "All songs", those that lie there as files, and each folder
/// with music in it. What cannot be read is left out with a warning.
///
/// @throws std::runtime_error  the folder is missing, is none, or cannot be read
Library ReadFolder(const std::string& folder, const Warn& warn);

/// The folder as an absolute path without links.
/// @throws std::runtime_error  the folder is missing, is none, or cannot be read
std::string CheckedFolder(const std::string& folder);

/// Sorts the tracks, and puts the playlist "All songs" first.
void Finish(Library& library);

/// For example "24 songs, 9 artists, 9 albums".
std::string Summarise(const Library& library);

/// 24 invented tracks of nine artists, some of them Chinese, with covers that are drawn at the call.
Library BuiltinLibrary();
}  // namespace ipodsim
