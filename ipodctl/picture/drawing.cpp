#include "picture/drawing.h"

#include <chafa.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "picture/columns.h"
#include "picture/pixels.h"

namespace ctl
{
namespace
{
// A character cell is about twice as high as it is wide.
constexpr float kShapeOfCharacter = 0.5F;

ChafaCanvasMode ModeFor(Palette palette)
{
    switch (palette)
    {
        case Palette::None:
            return CHAFA_CANVAS_MODE_FGBG;
        case Palette::Few:
            return CHAFA_CANVAS_MODE_INDEXED_240;
        case Palette::TrueColour:
            break;
    }
    return CHAFA_CANVAS_MODE_TRUECOLOR;
}

using Canvas = std::unique_ptr<ChafaCanvas, void (*)(ChafaCanvas*)>;

Canvas MakeCanvas(int columns, int rows, Palette palette, bool ascii)
{
    ChafaSymbolMap* const symbols = chafa_symbol_map_new();
    const auto blocks =
        static_cast<ChafaSymbolTags>(CHAFA_SYMBOL_TAG_BLOCK | CHAFA_SYMBOL_TAG_BORDER | CHAFA_SYMBOL_TAG_SPACE);
    chafa_symbol_map_add_by_tags(symbols, ascii ? CHAFA_SYMBOL_TAG_ASCII : blocks);
    ChafaCanvasConfig* const config = chafa_canvas_config_new();
    chafa_canvas_config_set_geometry(config, columns, rows);
    chafa_canvas_config_set_canvas_mode(config, ModeFor(palette));
    chafa_canvas_config_set_pixel_mode(config, CHAFA_PIXEL_MODE_SYMBOLS);
    chafa_canvas_config_set_symbol_map(config, symbols);
    Canvas canvas(chafa_canvas_new(config), chafa_canvas_unref);
    chafa_canvas_config_unref(config);
    chafa_symbol_map_unref(symbols);
    return canvas;
}

std::vector<std::string> LinesOf(ChafaCanvas* canvas)
{
    GString* const printed = chafa_canvas_print(canvas, nullptr);
    Lines lines = Split(printed->str);
    g_string_free(printed, TRUE);
    return lines;
}
}  // namespace

Palette PaletteOfTerminal()
{
    const char* const colours = std::getenv("COLORTERM");
    const bool all =
        colours != nullptr && (std::strcmp(colours, "truecolor") == 0 || std::strcmp(colours, "24bit") == 0);
    return all ? Palette::TrueColour : Palette::Few;
}

bool CanDraw()
{
    return true;
}

Drawing Draw(const ipodkit::Picture& picture, int columns, int rows, Palette palette, bool ascii)
{
    const std::optional<Pixels> pixels = Decode(picture);
    if (!pixels || columns < 1 || rows < 1) return {};
    gint width = columns;
    gint height = rows;
    chafa_calc_canvas_geometry(pixels->width, pixels->height, &width, &height, kShapeOfCharacter, TRUE, FALSE);
    if (width < 1 || height < 1) return {};
    const Canvas canvas = MakeCanvas(width, height, palette, ascii);
    chafa_canvas_draw_all_pixels(canvas.get(), CHAFA_PIXEL_RGBA8_UNASSOCIATED, pixels->bytes.data(), pixels->width,
                                 pixels->height, pixels->width * 4);
    return {width, LinesOf(canvas.get())};
}
}  // namespace ctl
