#include "music/cover.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "music/picture.h"

namespace ipodsim
{
namespace
{
constexpr int kSide = 300;
constexpr double kPi = 3.14159265358979323846;

struct Color
{
    double red = 0;
    double green = 0;
    double blue = 0;
};

Color Mix(const Color& a, const Color& b, double share)
{
    return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share, a.blue + (b.blue - a.blue) * share};
}

// Hue in turns; saturation and lightness between 0 and 1.
Color FromHue(double hue, double saturation, double lightness)
{
    const double chroma = saturation * std::min(lightness, 1 - lightness);
    const auto channel = [&](double offset)
    {
        const double k = std::fmod(offset + hue * 12, 12);
        return lightness - chroma * std::clamp(std::min(k - 3, 9 - k), -1.0, 1.0);
    };
    return {channel(0), channel(8), channel(4)};
}

class Canvas
{
public:
    /// Sets each pixel to what @p colorAt returns for its position and present color.
    template <class ColorAt>
    void Paint(ColorAt colorAt)
    {
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x) PaintPixel(x, y, colorAt);
    }

    void Circle(double centerX, double centerY, double radius, const Color& color, double opacity)
    {
        const auto colorAt = [&](int x, int y, const Color& under)
        {
            const double edge = radius - std::hypot(x - centerX, y - centerY);
            return Mix(under, color, opacity * std::clamp(edge, 0.0, 1.0));
        };
        // Only the bounding square, because there are many small shapes.
        for (int y = Within(centerY - radius); y < Within(centerY + radius + 1); ++y)
            for (int x = Within(centerX - radius); x < Within(centerX + radius + 1); ++x) PaintPixel(x, y, colorAt);
    }

    /// Fills the area below a wave.
    void Hill(double height, double swing, double waves, double phase, const Color& color, double opacity)
    {
        for (int x = 0; x < kSide; ++x)
        {
            const double line = height + swing * std::sin(phase + waves * 2 * kPi * x / kSide);
            const auto colorAt = [&](int, int y, const Color& under)
            { return Mix(under, color, opacity * std::clamp(y - line, 0.0, 1.0)); };
            for (int y = Within(line); y < kSide; ++y) PaintPixel(x, y, colorAt);
        }
    }

    Bytes Png() const
    {
        const std::vector<unsigned char> rows = Rows();
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = kSide;
        image.height = kSide;
        image.format = PNG_FORMAT_RGB;
        png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
        Bytes bytes(size);
        if (png_image_write_to_memory(&image, bytes.data(), &size, 0, rows.data(), 0, nullptr) == 0)
            throw std::runtime_error(std::string("cannot draw a cover: ") + image.message);
        bytes.resize(size);
        return bytes;
    }

private:
    static int Within(double place) { return static_cast<int>(std::clamp(place, 0.0, static_cast<double>(kSide))); }

    template <class ColorAt>
    void PaintPixel(int x, int y, ColorAt colorAt)
    {
        const int index = y * kSide + x;
        Color& pixel = m_pixels[static_cast<std::size_t>(index)];
        pixel = colorAt(x, y, pixel);
    }

    std::vector<unsigned char> Rows() const
    {
        std::vector<unsigned char> rows;
        rows.reserve(m_pixels.size() * 3);
        for (const Color& pixel : m_pixels)
            for (const double value : {pixel.red, pixel.green, pixel.blue})
                rows.push_back(static_cast<unsigned char>(std::lround(std::clamp(value, 0.0, 1.0) * 255)));
        return rows;
    }

    std::vector<Color> m_pixels = std::vector<Color>(std::size_t{kSide} * kSide);
};

struct Palette
{
    Color top;
    Color bottom;
    Color light;
    Color dark;
};

// Steps of the golden ratio keep the hues of adjacent numbers apart.
Palette PaletteOf(unsigned number)
{
    const double hue = std::fmod(0.55 + number * 0.61803398875, 1);
    return {FromHue(hue, 0.60, 0.30), FromHue(std::fmod(hue + 0.12, 1), 0.70, 0.68),
            FromHue(std::fmod(hue + 0.16, 1), 0.90, 0.88), FromHue(std::fmod(hue + 0.95, 1), 0.55, 0.16)};
}

void DrawSunAndHills(Canvas& canvas, const Palette& palette, double turn)
{
    canvas.Circle(150 + 60 * std::cos(turn), 120, 52, palette.light, 0.95);
    canvas.Hill(190, 16, 1.2, turn, palette.dark, 0.45);
    canvas.Hill(215, 20, 0.9, turn + 2, palette.dark, 0.6);
    canvas.Hill(248, 12, 1.6, turn + 4, palette.dark, 0.85);
}

void DrawRings(Canvas& canvas, const Palette& palette, double turn)
{
    const double x = 150 + 40 * std::cos(turn);
    const double y = 150 + 40 * std::sin(turn);
    for (int ring = 5; ring > 0; --ring)
        canvas.Circle(x, y, 24.0 * ring, ring % 2 == 0 ? palette.dark : palette.light, 0.30);
    canvas.Circle(x, y, 10, palette.light, 1);
}

void DrawMoonAndWaves(Canvas& canvas, const Palette& palette, double turn)
{
    for (int star = 0; star < 24; ++star)
        canvas.Circle(std::fmod(37.0 * star + 40 * turn, kSide), std::fmod(53.0 * star, 150), 1.4, palette.light, 0.8);
    canvas.Circle(205, 90, 40, palette.light, 0.95);
    canvas.Circle(188, 80, 36, palette.top, 0.9);
    for (int wave = 0; wave < 4; ++wave) canvas.Hill(190 + 28.0 * wave, 7, 2.5, turn + 1.7 * wave, palette.dark, 0.35);
}

void DrawPetals(Canvas& canvas, const Palette& palette, double turn)
{
    for (int petal = 0; petal < 8; ++petal)
    {
        const double angle = turn + petal * kPi / 4;
        canvas.Circle(150 + 62 * std::cos(angle), 150 + 62 * std::sin(angle), 50, palette.light, 0.22);
    }
    canvas.Circle(150, 150, 26, palette.dark, 0.85);
}
}  // namespace

Picture DrawCover(unsigned number)
{
    using Motif = void (*)(Canvas&, const Palette&, double);
    constexpr Motif kMotifs[] = {DrawSunAndHills, DrawRings, DrawMoonAndWaves, DrawPetals};
    const Palette palette = PaletteOf(number);
    Canvas canvas;
    canvas.Paint([&](int x, int y, const Color&)
                 { return Mix(palette.top, palette.bottom, (0.25 * x + y) / (1.25 * kSide)); });
    kMotifs[number % 4](canvas, palette, number * 0.9);
    return MakePicture(canvas.Png());
}
}  // namespace ipodsim
