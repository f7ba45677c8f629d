/// @file
/// Covers drawn on the spot, for albums that have none to show.
#pragma once

#include "music/track.h"

namespace ipodsim
{
/// A square PNG of 300 pixels: a gradient with simple shapes. Each number gives its own colours and shapes, the same
/// ones every time.
Picture DrawCover(unsigned number);
}  // namespace ipodsim
