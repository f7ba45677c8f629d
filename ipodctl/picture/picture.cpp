#include "picture/picture.h"

#ifdef IPODCTL_DRAWS
#include <chafa.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#endif

#include <images/image.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace ctl
{
namespace
{
bool IsAt(std::string_view image, std::size_t offset, std::string_view bytes)
{
    return image.size() >= offset + bytes.size() && image.substr(offset, bytes.size()) == bytes;
}

std::string_view TextOf(const std::vector<unsigned char>& image)
{
    return {reinterpret_cast<const char*>(image.data()), image.size()};
}

// Reads a big-endian number that is @p bytes long.
std::size_t NumberAt(std::string_view image, std::size_t offset, std::size_t bytes)
{
    std::size_t number = 0;
    for (std::size_t i = 0; i < bytes; ++i) number = number << 8 | static_cast<unsigned char>(image[offset + i]);
    return number;
}

// Walks the chunks (length, name, content, checksum) up to the final IEND.
bool HasPngEnd(std::string_view image)
{
    constexpr std::size_t kBesideContent = 12;
    for (std::size_t at = 8; at + kBesideContent <= image.size();)
    {
        if (IsAt(image, at + 4, "IEND")) return true;
        const std::size_t length = NumberAt(image, at, 4);
        if (length > image.size() - at - kBesideContent) return false;
        at += length + kBesideContent;
    }
    return false;
}

// Walks the segments up to the pixel data, because a thumbnail inside a segment has its own end marker. The pixel data
// itself cannot contain the end marker.
bool HasJpegEnd(std::string_view image)
{
    constexpr std::size_t kMark = 2;
    for (std::size_t at = kMark; at + 2 * kMark <= image.size() && image[at] == '\xFF';)
    {
        if (IsAt(image, at, "\xFF\xDA")) return image.find("\xFF\xD9", at) != std::string_view::npos;
        const bool filler = image[at + 1] == '\xFF';
        at += filler ? 1 : kMark + NumberAt(image, at + kMark, 2);
    }
    return false;
}
}  // namespace

const char* Extension(const std::vector<unsigned char>& image)
{
    return images::Extension(images::Examine(image.data(), image.size()).type);
}

bool IsWhole(ipodkit::PictureType type, const std::vector<unsigned char>& image)
{
    if (type == ipodkit::PictureType::Png) return HasPngEnd(TextOf(image));
    return type != ipodkit::PictureType::Jpeg || HasJpegEnd(TextOf(image));
}

bool IsSize(std::uint32_t width, std::uint32_t height)
{
    constexpr std::uint32_t kMost = 65535;
    return width > 0 && height > 0 && width <= kMost && height <= kMost;
}

Lines Beside(const Drawing& drawing, const Lines& lines)
{
    if (drawing.lines.empty()) return lines;
    constexpr std::size_t kGap = 2;
    const std::string empty(static_cast<std::size_t>(drawing.width), ' ');
    Lines both;
    for (std::size_t i = 0; i < std::max(drawing.lines.size(), lines.size()); ++i)
    {
        const std::string& left = i < drawing.lines.size() ? drawing.lines[i] : empty;
        both.push_back(i < lines.size() ? left + std::string(kGap, ' ') + lines[i] : left);
    }
    return both;
}

Palette PaletteOfTerminal()
{
    const char* const colors = std::getenv("COLORTERM");
    const bool all = colors != nullptr && (std::strcmp(colors, "truecolor") == 0 || std::strcmp(colors, "24bit") == 0);
    return all ? Palette::TrueColor : Palette::Few;
}

#ifdef IPODCTL_DRAWS
namespace
{
constexpr std::int64_t kMostPixels = 16'000'000;
constexpr int kLargeEnough = 512;
// A character cell is about twice as high as it is wide.
constexpr float kCellAspectRatio = 0.5F;

ChafaCanvasMode ModeFor(Palette palette)
{
    switch (palette)
    {
        case Palette::None:
            return CHAFA_CANVAS_MODE_FGBG;
        case Palette::Few:
            return CHAFA_CANVAS_MODE_INDEXED_240;
        case Palette::TrueColor:
            break;
    }
    return CHAFA_CANVAS_MODE_TRUECOLOR;
}

template <class T>
struct Unref
{
    void operator()(T* object) const { g_object_unref(object); }
};
using Loader = std::unique_ptr<GdkPixbufLoader, Unref<GdkPixbufLoader>>;
using Pixels = std::unique_ptr<GdkPixbuf, Unref<GdkPixbuf>>;

// Scales large images down during decoding, and makes the loader reject excessive sizes before it allocates memory.
void LimitSize(GdkPixbufLoader* loader, int width, int height, gpointer)
{
    if (std::int64_t{width} * height > kMostPixels) return gdk_pixbuf_loader_set_size(loader, 0, 0);
    const int scale = std::max(1, std::min(width, height) / kLargeEnough);
    gdk_pixbuf_loader_set_size(loader, std::max(1, width / scale), std::max(1, height / scale));
}

// Returns null if the image cannot be decoded. Without the check, the loader leaves missing rows as they are.
Pixels Decode(const ipodkit::Picture& picture)
{
    const bool known = picture.type == ipodkit::PictureType::Png || picture.type == ipodkit::PictureType::Jpeg;
    const bool whole = known && IsWhole(picture.type, picture.bytes);
    const Loader loader(whole ? gdk_pixbuf_loader_new_with_mime_type(MediaType(picture.type), nullptr) : nullptr);
    if (loader == nullptr) return nullptr;
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(LimitSize), nullptr);
    const bool written =
        gdk_pixbuf_loader_write(loader.get(), picture.bytes.data(), picture.bytes.size(), nullptr) != 0;
    const bool complete = gdk_pixbuf_loader_close(loader.get(), nullptr) != 0;
    GdkPixbuf* const pixels = written && complete ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
    return Pixels(pixels == nullptr ? nullptr : GDK_PIXBUF(g_object_ref(pixels)));
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

void Fill(ChafaCanvas* canvas, const GdkPixbuf* pixels)
{
    const bool alpha = gdk_pixbuf_get_has_alpha(pixels) != 0;
    chafa_canvas_draw_all_pixels(canvas, alpha ? CHAFA_PIXEL_RGBA8_UNASSOCIATED : CHAFA_PIXEL_RGB8,
                                 gdk_pixbuf_read_pixels(pixels), gdk_pixbuf_get_width(pixels),
                                 gdk_pixbuf_get_height(pixels), gdk_pixbuf_get_rowstride(pixels));
}

Lines Printed(ChafaCanvas* canvas)
{
    GString* const printed = chafa_canvas_print(canvas, nullptr);
    Lines lines = Split(printed->str);
    g_string_free(printed, TRUE);
    return lines;
}
}  // namespace

bool CanDraw()
{
    return true;
}

Drawing Draw(const ipodkit::Picture& picture, int columns, int rows, Palette palette, bool ascii)
{
    const Pixels pixels = columns < 1 || rows < 1 ? nullptr : Decode(picture);
    if (pixels == nullptr) return {};
    gint width = columns;
    gint height = rows;
    chafa_calc_canvas_geometry(gdk_pixbuf_get_width(pixels.get()), gdk_pixbuf_get_height(pixels.get()), &width, &height,
                               kCellAspectRatio, TRUE, FALSE);
    if (width < 1 || height < 1) return {};
    const Canvas canvas = MakeCanvas(width, height, palette, ascii);
    Fill(canvas.get(), pixels.get());
    return {width, Printed(canvas.get())};
}
#else
bool CanDraw()
{
    return false;
}

Drawing Draw(const ipodkit::Picture&, int, int, Palette, bool)
{
    return {};
}
#endif
}  // namespace ctl
