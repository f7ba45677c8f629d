// Every read is bounds-checked; a truncated or damaged header leaves the size, and possibly the type, unknown.
#include <images/image.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace images
{
namespace
{
using namespace std::string_view_literals;

struct Size
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// Numbers beyond the end read as 0; callers check with Has() first where that matters.
class Bytes
{
public:
    Bytes(const unsigned char* begin, std::size_t count) : m_begin(begin), m_count(count) {}

    /// Returns whether at least that many bytes are available.
    bool Has(std::size_t count) const { return count <= m_count; }

    std::uint32_t At(std::size_t offset) const { return offset < m_count ? m_begin[offset] : 0; }

    bool Holds(std::size_t offset, std::string_view text) const
    {
        return Has(offset + text.size()) && std::memcmp(m_begin + offset, text.data(), text.size()) == 0;
    }

    std::uint32_t Big(std::size_t offset, std::size_t length) const
    {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < length; ++i) value = value << 8 | At(offset + i);
        return value;
    }

    std::uint32_t Little(std::size_t offset, std::size_t length) const
    {
        std::uint32_t value = 0;
        for (std::size_t i = length; i-- > 0;) value = value << 8 | At(offset + i);
        return value;
    }

private:
    const unsigned char* m_begin;
    std::size_t m_count;
};

constexpr std::uint32_t kOldestBmpHead = 12;

// Text may start with "BM", too: the length of the second header identifies a BMP.
bool IsBmp(const Bytes& bytes)
{
    constexpr std::uint32_t kLengths[] = {kOldestBmpHead, 16, 40, 52, 56, 64, 108, 124};
    if (!bytes.Holds(0, "BM") || !bytes.Has(18)) return false;
    const std::uint32_t length = bytes.Little(14, 4);
    return std::find(std::begin(kLengths), std::end(kLengths), length) != std::end(kLengths);
}

Type TypeOf(const Bytes& bytes)
{
    if (bytes.Holds(0, "\xFF\xD8\xFF")) return Type::Jpeg;
    if (bytes.Holds(0, "\x89PNG\r\n\x1A\n")) return Type::Png;
    if (bytes.Holds(0, "GIF87a") || bytes.Holds(0, "GIF89a")) return Type::Gif;
    if (bytes.Holds(0, "RIFF") && bytes.Holds(8, "WEBP")) return Type::WebP;
    if (bytes.Holds(0, "II*\0"sv) || bytes.Holds(0, "MM\0*"sv)) return Type::Tiff;
    return IsBmp(bytes) ? Type::Bmp : Type::Unknown;
}

// Start-of-frame markers, except those for tables and extensions between them.
bool IsFrame(std::uint32_t marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Walks the segments. After the start of scan come pixels, whose bytes must not be taken for markers.
Size JpegSize(const Bytes& bytes)
{
    constexpr std::uint32_t kStartOfScan = 0xDA;
    for (std::size_t at = 2; bytes.Has(at + 9) && bytes.At(at) == 0xFF;)
    {
        const std::uint32_t marker = bytes.At(at + 1);
        if (IsFrame(marker)) return {bytes.Big(at + 7, 2), bytes.Big(at + 5, 2)};
        const bool isFill = marker == 0xFF;
        const std::size_t length = bytes.Big(at + 2, 2);
        if (marker == kStartOfScan || (!isFill && length < 2)) break;
        at += isFill ? 1 : 2 + length;
    }
    return {};
}

Size PngSize(const Bytes& bytes)
{
    if (!bytes.Has(24) || !bytes.Holds(12, "IHDR")) return {};
    return {bytes.Big(16, 4), bytes.Big(20, 4)};
}

Size GifSize(const Bytes& bytes)
{
    if (!bytes.Has(10)) return {};
    return {bytes.Little(6, 2), bytes.Little(8, 2)};
}

// The name of the first chunk identifies the format.
Size WebPSize(const Bytes& bytes)
{
    if (bytes.Holds(12, "VP8X") && bytes.Has(30)) return {bytes.Little(24, 3) + 1, bytes.Little(27, 3) + 1};
    if (bytes.Holds(12, "VP8L") && bytes.At(20) == 0x2F && bytes.Has(25))
    {
        const std::uint32_t bits = bytes.Little(21, 4);
        return {(bits & 0x3FFF) + 1, (bits >> 14 & 0x3FFF) + 1};
    }
    if (bytes.Holds(12, "VP8 ") && bytes.Holds(23, "\x9D\x01\x2A") && bytes.Has(30))
        return {bytes.Little(26, 2) & 0x3FFF, bytes.Little(28, 2) & 0x3FFF};
    return {};
}

// A negative height means top-down rows.
Size BmpSize(const Bytes& bytes)
{
    if (bytes.Little(14, 4) == kOldestBmpHead)
        return bytes.Has(22) ? Size{bytes.Little(18, 2), bytes.Little(20, 2)} : Size{};
    if (!bytes.Has(26)) return {};
    const std::uint32_t height = bytes.Little(22, 4);
    return {bytes.Little(18, 4), height > INT32_MAX ? 0 - height : height};
}

// Reads numbers in the byte order given by the first two bytes.
std::uint32_t TiffNumber(const Bytes& bytes, std::size_t offset, std::size_t length)
{
    return bytes.Holds(0, "II") ? bytes.Little(offset, length) : bytes.Big(offset, length);
}

// A 12-byte directory entry: tag, type, number of values, and the value.
std::uint32_t TiffValue(const Bytes& bytes, std::size_t entry)
{
    constexpr std::uint32_t kShort = 3;
    constexpr std::uint32_t kLong = 4;
    const std::uint32_t type = TiffNumber(bytes, entry + 2, 2);
    if (type != kShort && type != kLong) return 0;
    return TiffNumber(bytes, entry + 8, type == kShort ? 2 : 4);
}

Size TiffSize(const Bytes& bytes)
{
    constexpr std::uint32_t kWidth = 256;
    constexpr std::uint32_t kHeight = 257;
    const std::size_t directory = TiffNumber(bytes, 4, 4);
    const std::uint32_t entries = TiffNumber(bytes, directory, 2);
    Size size;
    for (std::size_t i = 0, entry = directory + 2; i < entries && bytes.Has(entry + 12); ++i, entry += 12)
    {
        const std::uint32_t tag = TiffNumber(bytes, entry, 2);
        if (tag == kWidth) size.width = TiffValue(bytes, entry);
        if (tag == kHeight) size.height = TiffValue(bytes, entry);
    }
    return size;
}

Size SizeOf(Type type, const Bytes& bytes)
{
    switch (type)
    {
        case Type::Jpeg:
            return JpegSize(bytes);
        case Type::Png:
            return PngSize(bytes);
        case Type::Gif:
            return GifSize(bytes);
        case Type::WebP:
            return WebPSize(bytes);
        case Type::Bmp:
            return BmpSize(bytes);
        case Type::Tiff:
            return TiffSize(bytes);
        default:
            return {};
    }
}
}  // namespace

Head Examine(const unsigned char* bytes, std::size_t count)
{
    const Bytes head(bytes, count);
    const Type type = TypeOf(head);
    const Size size = SizeOf(type, head);
    const bool known = size.width > 0 && size.height > 0;
    return known ? Head{type, size.width, size.height} : Head{type};
}

const char* MediaType(Type type)
{
    static constexpr const char* names[] = {
        "application/octet-stream", "image/jpeg", "image/png", "image/gif", "image/bmp", "image/webp", "image/tiff"};
    return names[static_cast<int>(type)];
}

const char* Extension(Type type)
{
    static constexpr const char* extensions[] = {".bin", ".jpg", ".png", ".gif", ".bmp", ".webp", ".tiff"};
    return extensions[static_cast<int>(type)];
}
}  // namespace images
