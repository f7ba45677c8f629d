// Reads the heads of picture files. Every read is bounded; what does not fit the format leaves size or type unknown.
#include <ipodkit/picture.h>

#include <cstring>
#include <string_view>

namespace ipodkit
{
namespace
{
using Bytes = std::vector<unsigned char>;

struct Size
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

// 0 beyond the end.
std::uint32_t At(const Bytes& bytes, std::size_t offset)
{
    return offset < bytes.size() ? bytes[offset] : 0;
}

std::uint32_t Big(const Bytes& bytes, std::size_t offset, int count)
{
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | At(bytes, offset + static_cast<std::size_t>(i));
    return value;
}

std::uint32_t Little(const Bytes& bytes, std::size_t offset, int count)
{
    std::uint32_t value = 0;
    for (int i = count; i-- > 0;) value = value << 8 | At(bytes, offset + static_cast<std::size_t>(i));
    return value;
}

bool Holds(const Bytes& bytes, std::size_t offset, std::string_view text)
{
    return bytes.size() >= offset + text.size() && std::memcmp(bytes.data() + offset, text.data(), text.size()) == 0;
}

PictureType TypeOf(const Bytes& bytes)
{
    if (Holds(bytes, 0, "\xFF\xD8\xFF")) return PictureType::Jpeg;
    if (Holds(bytes, 0, "\x89PNG\r\n\x1A\n")) return PictureType::Png;
    if (Holds(bytes, 0, "GIF87a") || Holds(bytes, 0, "GIF89a")) return PictureType::Gif;
    if (Holds(bytes, 0, "RIFF") && Holds(bytes, 8, "WEBP")) return PictureType::WebP;
    if (Holds(bytes, 0, "BM") && bytes.size() >= 26) return PictureType::Bmp;
    return PictureType::Unknown;
}

// Start-of-frame markers, without those that stand between them for tables and extensions.
bool IsFrame(std::uint32_t marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

Size JpegSize(const Bytes& bytes)
{
    for (std::size_t at = 2; at + 9 < bytes.size() && bytes[at] == 0xFF;)
    {
        const std::uint32_t marker = bytes[at + 1];
        if (IsFrame(marker)) return {Big(bytes, at + 7, 2), Big(bytes, at + 5, 2)};
        const bool isFill = marker == 0xFF;
        const std::size_t length = Big(bytes, at + 2, 2);
        if (!isFill && length < 2) break;
        at += isFill ? 1 : 2 + length;
    }
    return {};
}

Size WebPSize(const Bytes& bytes)
{
    if (bytes.size() < 30) return {};
    if (Holds(bytes, 12, "VP8X")) return {Little(bytes, 24, 3) + 1, Little(bytes, 27, 3) + 1};
    if (Holds(bytes, 12, "VP8L"))
    {
        const std::uint32_t bits = Little(bytes, 21, 4);
        return {(bits & 0x3FFF) + 1, (bits >> 14 & 0x3FFF) + 1};
    }
    if (Holds(bytes, 12, "VP8 ")) return {Little(bytes, 26, 2) & 0x3FFF, Little(bytes, 28, 2) & 0x3FFF};
    return {};
}

// A negative height stands for rows from top to bottom.
Size BmpSize(const Bytes& bytes)
{
    const auto height = static_cast<std::int32_t>(Little(bytes, 22, 4));
    const auto magnitude = static_cast<std::uint32_t>(height < 0 ? -std::int64_t{height} : std::int64_t{height});
    return {Little(bytes, 18, 4), magnitude};
}

Size SizeOf(PictureType type, const Bytes& bytes)
{
    switch (type)
    {
        case PictureType::Jpeg:
            return JpegSize(bytes);
        case PictureType::Png:
            return Holds(bytes, 12, "IHDR") ? Size{Big(bytes, 16, 4), Big(bytes, 20, 4)} : Size{};
        case PictureType::Gif:
            return {Little(bytes, 6, 2), Little(bytes, 8, 2)};
        case PictureType::WebP:
            return WebPSize(bytes);
        case PictureType::Bmp:
            return BmpSize(bytes);
        default:
            return {};
    }
}

// FNV-1a, 64 bits.
std::uint64_t HashOf(const Bytes& bytes)
{
    std::uint64_t hash = 14695981039346656037ULL;
    for (const unsigned char byte : bytes) hash = (hash ^ byte) * 1099511628211ULL;
    return hash;
}
}  // namespace

const char* MediaType(PictureType type)
{
    static constexpr const char* names[] = {
        "application/octet-stream", "image/jpeg", "image/png", "image/gif", "image/bmp", "image/webp"};
    return names[static_cast<int>(type)];
}

Picture Examine(std::vector<unsigned char> bytes)
{
    const PictureType type = TypeOf(bytes);
    const Size size = SizeOf(type, bytes);
    const std::uint64_t hash = HashOf(bytes);
    return {std::move(bytes), type, size.width, size.height, hash};
}
}  // namespace ipodkit
