#include "picture/picture.h"

#include <algorithm>
#include <string_view>

namespace ctl
{
namespace
{
using namespace std::string_view_literals;

struct Signature
{
    std::string_view bytes;
    PictureType type;
};

constexpr Signature kSignatures[] = {
    {"\xFF\xD8\xFF"sv, {"image/jpeg", ".jpg"}},
    {"\x89PNG\r\n\x1A\n"sv, {"image/png", ".png"}},
    {"GIF87a"sv, {"image/gif", ".gif"}},
    {"GIF89a"sv, {"image/gif", ".gif"}},
    {"II*\0"sv, {"image/tiff", ".tiff"}},
    {"MM\0*"sv, {"image/tiff", ".tiff"}},
    {"BM"sv, {"image/bmp", ".bmp"}},
};

bool StandsAt(std::string_view image, std::size_t offset, std::string_view bytes)
{
    return image.size() >= offset + bytes.size() && image.substr(offset, bytes.size()) == bytes;
}

std::string_view Text(const std::vector<unsigned char>& image)
{
    return {reinterpret_cast<const char*>(image.data()), image.size()};
}

// Big-endian, of so many bytes.
std::size_t NumberAt(std::string_view image, std::size_t offset, std::size_t bytes)
{
    std::size_t number = 0;
    for (std::size_t i = 0; i < bytes; ++i) number = number << 8 | static_cast<unsigned char>(image[offset + i]);
    return number;
}

// From chunk to chunk: length, name, content, checksum. The last one is empty.
bool HasPngEnd(std::string_view image)
{
    constexpr std::size_t kBesideContent = 12;
    for (std::size_t at = 8; at + kBesideContent <= image.size();)
    {
        if (StandsAt(image, at + 4, "IEND")) return true;
        const std::size_t length = NumberAt(image, at, 4);
        if (length > image.size() - at - kBesideContent) return false;
        at += length + kBesideContent;
    }
    return false;
}

// From segment to segment up to the pixels: a small picture inside a segment has an end of its own. Within the pixels
// no byte can be taken for a mark.
bool HasJpegEnd(std::string_view image)
{
    constexpr std::size_t kMark = 2;
    for (std::size_t at = kMark; at + 2 * kMark <= image.size() && image[at] == '\xFF';)
    {
        if (StandsAt(image, at, "\xFF\xDA")) return image.find("\xFF\xD9", at) != std::string_view::npos;
        const bool filler = image[at + 1] == '\xFF';
        at += filler ? 1 : kMark + NumberAt(image, at + kMark, 2);
    }
    return false;
}
}  // namespace

PictureType Sniff(const std::vector<unsigned char>& image)
{
    const std::string_view bytes = Text(image);
    for (const Signature& known : kSignatures)
        if (StandsAt(bytes, 0, known.bytes)) return known.type;
    if (StandsAt(bytes, 0, "RIFF") && StandsAt(bytes, 8, "WEBP")) return {"image/webp", ".webp"};
    return {"application/octet-stream", ".bin"};
}

bool IsWhole(const std::vector<unsigned char>& image)
{
    const std::string_view type = Sniff(image).mime;
    if (type == "image/png") return HasPngEnd(Text(image));
    return type != "image/jpeg" || HasJpegEnd(Text(image));
}

bool IsSize(std::uint32_t width, std::uint32_t height)
{
    constexpr std::uint32_t kMost = 65535;
    return width > 0 && height > 0 && width <= kMost && height <= kMost;
}
}  // namespace ctl
