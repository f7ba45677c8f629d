/// @file
/// A track and its picture, as something that can be shown.
#pragma once

#include <ipodkit/event.h>
#include <ipodkit/picture.h>

#include <string>

#include "output/output.h"

namespace ctl
{
/// "Title - Artist", printable; "(no title)" when there is none.
std::string TrackLine(const ipodkit::Track& track);

/// Whether nothing at all is known of the track.
bool IsEmpty(const ipodkit::Track& track);

/// "image/png, 1234 bytes, 300 x 300", without impossible dimensions; ", incomplete" when its end is missing.
std::string PictureLine(const ipodkit::Picture& picture);

/// The same, with the dimensions that the service reported; "none" without artwork.
std::string ArtworkLine(const ipodkit::ArtworkChanged& artwork);
}  // namespace ctl
