/// @file
/// Pictures on a terminal, made of characters.
#pragma once

#include <ipodkit/picture.h>

#include <string>
#include <vector>

namespace ctl
{
enum class Palette
{
    None,  ///< characters only
    Few,   ///< the 256 colours of a terminal
    TrueColour
};

/// What the terminal can show, by its environment.
Palette PaletteOfTerminal();

struct Drawing
{
    int width = 0;                   ///< columns of each line
    std::vector<std::string> lines;  ///< each resets its colours at its end
};

/// Whether this build can draw.
bool CanDraw();

/// Draws a picture into at most @p columns by @p rows characters, in its own shape. Without lines when it is no picture
/// that can be drawn, or when this build cannot.
///
/// @param ascii  without block characters, for terminals that do not have them
Drawing Draw(const ipodkit::Picture& picture, int columns, int rows, Palette palette, bool ascii);
}  // namespace ctl
