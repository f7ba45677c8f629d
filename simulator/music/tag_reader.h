/// @file
/// Tags of audio files.
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "music/track.h"

namespace ipodsim
{
/// Reads tags and length. A text that is missing becomes the file's name or "Unknown artist" and so on.
/// Empty if it is not an audio file, or if reading was cancelled; never throws for what a file holds.
///
/// @param cancelled  ends the reading when it becomes true; may be null
std::optional<Track> ReadTrack(const std::string& file, const std::atomic<bool>* cancelled = nullptr);

/// The bytes of the front cover, or else of the first picture, in any tag that may hold one; empty when none.
Bytes ReadEmbeddedPicture(const std::string& file);
}  // namespace ipodsim
