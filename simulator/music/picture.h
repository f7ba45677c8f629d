/// @file
/// Pictures of tracks.
#pragma once

#include <cstddef>
#include <string>

#include "music/track.h"

namespace ipodsim
{
/// The largest picture that fits into its segment of 1 MiB, which also stores the heads of the vectors.
constexpr std::size_t kLargestPicture = (std::size_t{1} << 20U) - 4096;
/// Why a picture is skipped.
inline std::string TooLarge()
{
    return "larger than " + std::to_string(kLargestPicture) + " bytes";
}

/// Wraps the bytes of a picture and reads its size from a PNG or JPEG header.
Picture MakePicture(Bytes bytes);

/// Whether bytes begin with the head of a PNG, JPEG, GIF, BMP or WebP; a signature alone is none.
bool IsPicture(const Bytes& bytes);
/// The same of a file; false also when it cannot be read.
bool IsPictureFile(const std::string& file);

/// The picture of a track, read from its file or that of its folder each time. Empty when there is none or the file has
/// gone.
Picture PictureOf(const Track& track);
}  // namespace ipodsim
