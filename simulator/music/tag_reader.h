/// @file
/// Tags of audio files.
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "music/track.h"

namespace ipodsim
{
/// Reads tags and length. A missing title becomes the file name; other missing text becomes "Unknown artist" and so on.
/// Empty if the file is not audio or reading was cancelled. Never throws because of a file's contents.
///
/// @param cancelled  setting it to true aborts reading; may be null
std::optional<Track> ReadTrack(const std::string& file, const std::atomic<bool>* cancelled = nullptr);

/// Returns the front cover, or else the first image, from any tag that can hold one; empty if there is none.
Bytes ReadEmbeddedPicture(const std::string& file);
}  // namespace ipodsim
