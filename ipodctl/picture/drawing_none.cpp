// In place of drawing.cpp, where the libraries for it are missing.
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
