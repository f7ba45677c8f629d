/// @file
/// Tags of audio files.
#pragma once

#include <optional>
#include <string>

#include "music/track.h"

namespace ipodsim
{
/// Reads tags and length. A text that is missing becomes the file's name or "Unknown artist" and so on.
/// Empty if it is not an audio file; never throws for what a file holds.
std::optional<Track> ReadTrack(const std::string& file);

/// The bytes of the front cover, or else of the first picture, in any tag that may hold one; empty when none.
Bytes ReadEmbeddedPicture(const std::string& file);
}  // namespace ipodsim
