/// @file
/// Artwork of tracks.
#pragma once

#include <cstddef>
#include <string>

#include "music/track.h"

namespace ipodsim
{
/// The largest image that fits into its segment of 1 MiB, which also stores the vector headers.
constexpr std::size_t kLargestPicture = (std::size_t{1} << 20U) - 4096;
/// The reason why an image is skipped.
inline std::string TooLarge()
{
    return "larger than " + std::to_string(kLargestPicture) + " bytes";
}

/// Wraps the bytes of an image and reads its dimensions from its header.
Picture MakePicture(Bytes bytes);

/// Whether the bytes begin with a JPEG signature, or with a PNG, GIF, BMP, or WebP header that contains the size.
bool IsPicture(const Bytes& bytes);
/// The same for a file; false if it cannot be read.
bool IsPictureFile(const std::string& file);

/// Reads the artwork of a track from its file or folder each time. Empty if there is none or the file has disappeared.
Picture PictureOf(const Track& track);
}  // namespace ipodsim
