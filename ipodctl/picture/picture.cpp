#include "picture/picture.h"

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

const char* Extension(ipodkit::PictureType type)
{
    static constexpr const char* extensions[] = {".bin", ".jpg", ".png", ".gif", ".bmp", ".webp"};
    return extensions[static_cast<int>(type)];
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
}  // namespace ctl
