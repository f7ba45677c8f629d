/// @file
/// Pictures of tracks.
#pragma once

#include "track.h"

namespace ipodsim
{
/// Wraps the bytes of a picture and reads its size from a PNG or JPEG header.
Picture MakePicture(Bytes bytes);

/// The picture of a track, read from its file each time. Empty when there is none or the file has gone.
Picture PictureOf(const Track& track);
}  // namespace ipodsim
