/// @file
/// Music libraries: read from a folder, or built in.
#pragma once

#include <string>

#include "music/track.h"

namespace ipodsim
{
/// Returns the folder's absolute path with links resolved.
/// @throws std::runtime_error  the folder is missing, not a folder, or cannot be read
std::string CheckedFolder(const std::string& folder);

/// Sorts the tracks, and puts the playlist "All songs" first.
void Finish(Library& library);

/// For example "24 songs, 9 artists, 9 albums".
std::string Summarize(const Library& library);

/// 24 fictitious tracks by nine artists, some of them Chinese, with generated covers.
Library BuiltinLibrary();
}  // namespace ipodsim
