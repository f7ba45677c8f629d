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
}  // namespace

PictureType Sniff(const std::vector<unsigned char>& image)
{
    const std::string_view bytes(reinterpret_cast<const char*>(image.data()), image.size());
    for (const Signature& known : kSignatures)
        if (StandsAt(bytes, 0, known.bytes)) return known.type;
    if (StandsAt(bytes, 0, "RIFF") && StandsAt(bytes, 8, "WEBP")) return {"image/webp", ".webp"};
    return {"application/octet-stream", ".bin"};
}
}  // namespace ctl
