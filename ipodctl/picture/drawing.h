/// @file
/// Draws images on a terminal with characters.
#pragma once

#include <ipodkit/picture.h>

#include <string>
#include <vector>

namespace ctl
{
enum class Palette
{
    None,  ///< characters only
    Few,   ///< the 256 colors of a terminal
    TrueColour
};

/// Returns the palette that the terminal supports, according to the environment.
Palette PaletteOfTerminal();

struct Drawing
{
    int width = 0;                   ///< columns of each line
    std::vector<std::string> lines;  ///< each ends with a color reset
};

/// Returns whether this build can draw.
bool CanDraw();

/// Draws an image into at most @p columns by @p rows characters and keeps its aspect ratio. Returns no lines if the
/// image cannot be decoded, or if this build cannot draw.
///
/// @param ascii  use only ASCII, for terminals without block characters
Drawing Draw(const ipodkit::Picture& picture, int columns, int rows, Palette palette, bool ascii);
}  // namespace ctl
