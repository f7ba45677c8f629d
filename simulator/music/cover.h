/// @file
/// Generated covers, for albums without artwork.
#pragma once

#include "music/track.h"

namespace ipodsim
{
/// Draws a PNG of 300 x 300 pixels: a gradient with simple shapes. @p number determines the colors and shapes.
Picture DrawCover(unsigned number);
}  // namespace ipodsim
