/// @file
/// A track and its picture, as something that can be shown.
#pragma once

#include <QBXIpodTypes.h>

#include <string>

#include "output/output.h"

namespace ctl
{
/// "Title - Artist", printable; "(no title)" when there is none.
std::string TrackLine(const QBXiPodTrackInfo& track);

Json TrackJson(const QBXiPodTrackInfo& track);

/// Whether nothing at all is known of the track.
bool IsEmpty(const QBXiPodTrackInfo& track);

/// "image/png, 1234 bytes, 300 x 300", without dimensions that it cannot have; and whether it lacks its end.
std::string PictureLine(const std::vector<unsigned char>& picture, std::uint32_t width, std::uint32_t height);

/// The same, with the dimensions that the service reported.
std::string ArtworkLine(const QBXTrackArtwork& artwork);

Json ArtworkJson(const QBXTrackArtwork& artwork);
}  // namespace ctl
