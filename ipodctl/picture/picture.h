/// @file
/// Checks images, and draws them on a terminal with characters.
#pragma once

#include <ipodkit/picture.h>

#include <cstdint>
#include <vector>

#include "output/text.h"

namespace ctl
{
enum class Palette
{
    None,  ///< characters only
    Few,   ///< the 256 colors of a terminal
    TrueColor
};

/// Returns the palette that the terminal supports, according to the environment.
Palette PaletteOfTerminal();

struct Drawing
{
    int width = 0;  ///< columns of each line
    Lines lines;    ///< each ends with a color reset
};

/// Returns whether this build can draw, which requires chafa and gdk-pixbuf.
bool CanDraw();

/// Draws a PNG or JPEG image into at most @p columns by @p rows characters and keeps its aspect ratio. Returns no lines
/// if the image has another type, is damaged, or declares more than sixteen million pixels, or if this build cannot
/// draw.
///
/// @param ascii  use only ASCII, for terminals without block characters
Drawing Draw(const ipodkit::Picture& picture, int columns, int rows, Palette palette, bool ascii);

/// Returns the file extension for an image, such as ".png"; ".bin" for an unknown type.
const char* Extension(const std::vector<unsigned char>& image);

/// Returns whether a PNG or JPEG image has its end marker. Images of other types count as complete.
bool IsWhole(ipodkit::PictureType type, const std::vector<unsigned char>& image);

/// Returns whether both dimensions are between 1 and 65535 pixels; a header with other dimensions is corrupt.
bool IsSize(std::uint32_t width, std::uint32_t height);

/// Puts a drawing to the left of lines, with a gap of two columns.
Lines Beside(const Drawing& drawing, const Lines& lines);
}  // namespace ctl
