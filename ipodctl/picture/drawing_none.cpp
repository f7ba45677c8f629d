// Replaces drawing.cpp in builds without the image libraries.
#include "picture/drawing.h"

namespace ctl
{
Palette PaletteOfTerminal()
{
    return Palette::None;
}

bool CanDraw()
{
    return false;
}

Drawing Draw(const ipodkit::Picture&, int, int, Palette, bool)
{
    return {};
}
}  // namespace ctl
