/// @file
/// A music library read from a folder.
#pragma once

#include <functional>
#include <string>

#include "track.h"

namespace ipodsim
{
/// Receives one line about something that was left out.
using Warn = std::function<void(const std::string&)>;

/// Reads all audio files below @p folder; a sub-folder is read once however many links lead to it, and becomes a
/// playlist when there is music in it; "All songs" is the first. Files that are no audio or cannot be read are left out
/// with a warning each.
///
/// @throws std::runtime_error  the folder is missing, is none, or cannot be read
Library ReadFolder(const std::string& folder, const Warn& warn);

/// Sorts the tracks, and puts the playlist "All songs" first.
void Finish(Library& library);
}  // namespace ipodsim
